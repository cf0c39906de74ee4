#include "description/description_loader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "description/description_files.h"
#include "platform/runtime_error.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

using testing::Replace;

const std::string kHeader =
    "[VANTREL]\nApp=Plant\nKey=PMP1\nVersion=2.5\nHeaderLenght=16\nCounterIndex=3\n"
    "RecordLenght=2\nStringIndex= 5,6 \n";
const std::string kDriver = "[DRIVER]\nTitle=North\nColumnWidth=900\n";
const std::string kRegisters = "[REGISTER_0]\nBit_0=1,,Run,%d\n[REGISTER_1]\nWord1=2,800,Lvl,%d\n";
const std::string kPlain = kHeader + kDriver + kRegisters;

class Loader : public ::testing::Test {
 protected:
  void SetUp() override {
    sources.readSymbolFile = [this] { ++symbolReads; };
    sources.readValueTextFile = [this](const std::string& path) { textFilesRead.push_back(path); };
    sources.prompts = &prompts;
  }
  // Whatever happened, no working copy outlives a load.
  void TearDown() override { EXPECT_EQ(files.TempEntries(), std::vector<std::string>{}); }

  bool Load(const std::string& plain, const std::string& name = "d.vtld") {
    d.DescriptionFile = files.WriteEnciphered(name, plain);
    return LoadDescription(d, 16, sources, err);
  }

  testing::DescriptionFiles files;
  TraceDescription d;
  DescriptionSources sources;
  ScriptedPrompts prompts;
  std::string err;
  int symbolReads = 0;
  std::vector<std::string> textFilesRead;
};

TEST_F(Loader, LoadsTheExampleDescription) {
  const std::string plain = testing::ReadBytes(testing::ExamplesDirectory() + "/PMP1_pumps.vtl");
  ASSERT_FALSE(plain.empty());
  const std::string project = files.Root().string() + "/project";
  sources.textFileDirectories = {project, "", files.Root().string() + "/res/"};

  ASSERT_TRUE(Load(plain)) << err;
  EXPECT_EQ(d.HeaderKeyText, "PMP1");
  EXPECT_EQ(d.ColumnCount, 12);
  EXPECT_EQ(symbolReads, 1);
  EXPECT_EQ(textFilesRead,
            (std::vector<std::string>{project + "/pumps_texts.txt",
                                      files.Root().string() + "/res/pumps_texts.txt"}));
}

TEST_F(Loader, WorkingCopyIsAPrivateTemporaryFile) {
  std::vector<std::filesystem::perms> seen;
  sources.readSymbolFile = [&] {
    for (const auto& entry : std::filesystem::directory_iterator(files.TempDirectory())) {
      seen.push_back(entry.status().permissions());
    }
  };
  ASSERT_TRUE(Load(Replace(kPlain, "%d\n[REG", "%g\n[REG")));
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0], std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Loader, FieldsOfTheHeaderAndDriverSections) {
  ASSERT_TRUE(Load(kPlain + "[INFO]\nline one\n\nline two\n[REGISTER_2]\nBit_0=9,,X,%d\n"));
  EXPECT_EQ(d.DescVersion, 2);  // 2.5 rounds to even
  EXPECT_EQ(d.CounterIndex, 3);
  EXPECT_EQ(d.StringIndex, "5,6");
  EXPECT_EQ(d.Title, "North");
  EXPECT_EQ(d.InfoText, "line one\rline two");
  EXPECT_EQ(d.ColumnCount, 2);  // REGISTER_2 lies beyond the record
  EXPECT_EQ(d.Columns[2].RegisterIndex, 1);
  EXPECT_TRUE(textFilesRead.empty());
}

TEST_F(Loader, NamesMatchInAnyCase) {
  std::string lower;
  for (char c : kPlain)
    lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  ASSERT_TRUE(Load(lower)) << err;
  EXPECT_EQ(d.Title, "north");
  EXPECT_EQ(d.ColumnCount, 2);
}

TEST_F(Loader, HeaderLengthMustBePositive) {
  for (const char* value :
       {"HeaderLenght=0", "HeaderLenght=-4", "HeaderLenght=abc", "HeaderLength=16"}) {
    d = TraceDescription{};
    EXPECT_FALSE(Load(Replace(kPlain, "HeaderLenght=16", value))) << value;
    EXPECT_EQ(err, "Invalid Header Lenght : 16") << value;
    EXPECT_EQ(d.HeaderApp, "Plant") << value;  // read before the check
    EXPECT_EQ(d.DescVersion, 2) << value;
    EXPECT_EQ(d.CounterIndex, 4) << value;
  }
  EXPECT_TRUE(Load(Replace(kPlain, "HeaderLenght=16", "HeaderLenght=16abc")));
  EXPECT_FALSE(Load(kDriver + kRegisters));
  EXPECT_EQ(err, "Invalid Header Lenght : 16");
}

TEST_F(Loader, CounterIndexRoundsHalvesToEven) {
  for (const auto& [value, expected] :
       std::vector<std::pair<std::string, int>>{{"0.5", 0}, {"1.5", 2}, {"2.5", 2}, {"&H10", 16}}) {
    ASSERT_TRUE(Load(Replace(kPlain, "CounterIndex=3", "CounterIndex=" + value))) << value;
    EXPECT_EQ(d.CounterIndex, expected) << value;
  }
  d.CounterIndex = 7;
  EXPECT_FALSE(Load(Replace(kPlain, "CounterIndex=3", "CounterIndex=0")));
  EXPECT_EQ(err, "Invalid Counter Index : 7");
  EXPECT_EQ(d.CounterIndex, 7);
}

TEST_F(Loader, RecordLengthMustBePositiveAndBoundsTheSections) {
  d.RecordLength = 9;
  EXPECT_FALSE(Load(Replace(kPlain, "RecordLenght=2", "RecordLength=2")));
  EXPECT_EQ(err, "Invalid Record Lenght : 9");
  EXPECT_EQ(d.CounterIndex, 3);  // already taken from this file

  const std::string three = Replace(kHeader, "RecordLenght=2", "RecordLenght=3") + kDriver +
                            "[REGISTER_0]\nBit_0=1,,A,%d\n[REGISTER_2]\nByte1=2,,B,%d\n"
                            "[REGISTER_3]\nByte1=3,,C,%d\n";
  ASSERT_TRUE(Load(three)) << err;
  EXPECT_EQ(d.RecordLength, 3);
  EXPECT_EQ(d.ColumnCount, 2);
  EXPECT_EQ(d.Columns[2].RegisterIndex, 2);
  EXPECT_EQ(d.Columns[3].Defined, 0);
}

TEST_F(Loader, ColumnWidthIsAStrictInteger) {
  for (const auto& [value, expected] :
       std::vector<std::pair<std::string, int>>{{"5", 1000}, {"10", 10}, {" 32767 ", 32767}}) {
    ASSERT_TRUE(Load(Replace(kPlain, "ColumnWidth=900", "ColumnWidth=" + value))) << value;
    EXPECT_EQ(d.DefaultColumnWidth, expected) << value;
    EXPECT_EQ(d.Columns[1].Width, expected) << value;  // the column left its width empty
  }
  for (const auto& [line, message] :
       std::vector<std::pair<std::string, std::string>>{{"Width=900", "Type mismatch"},
                                                        {"ColumnWidth=12abc", "Type mismatch"},
                                                        {"ColumnWidth=40000", "Overflow"}}) {
    EXPECT_FALSE(Load(Replace(kPlain, "ColumnWidth=900", line))) << line;
    EXPECT_EQ(err, message) << line;
  }
}

TEST_F(Loader, FlagsAndColumnCountAreResetBeforeTheSections) {
  d.ColumnCount = 50;
  d.Columns[5].Defined = -1;
  d.Columns[5].Marked = -1;
  d.Columns[1].Marked = -1;
  ASSERT_TRUE(Load(kPlain));
  EXPECT_EQ(d.ColumnCount, 2);
  EXPECT_EQ(d.Columns[5].Defined, 0);
  EXPECT_EQ(d.Columns[5].Marked, 0);
  EXPECT_EQ(d.Columns[1].Marked, 0);
}

TEST_F(Loader, NoColumnAboveZeroIsNoValidSection) {
  sources.textFileDirectories = {"dir"};
  EXPECT_FALSE(Load(kHeader + kDriver + "TextFile=t.txt\n[REGISTER_0]\nBit_0=0,,A,%d\n"));
  EXPECT_EQ(err, "No valid section founded.");
  EXPECT_EQ(textFilesRead, std::vector<std::string>{"dir/t.txt"});  // read before the check
}

TEST_F(Loader, SectionFailureStopsTheLoadBeforeTheTextFile) {
  sources.textFileDirectories = {"dir"};
  const std::string withText =
      Replace(kPlain, "ColumnWidth=900", "ColumnWidth=900\nTextFile=t.txt");
  ASSERT_TRUE(Load(withText));
  ASSERT_EQ(textFilesRead.size(), 1U);
  textFilesRead.clear();
  EXPECT_FALSE(Load(Replace(withText, "Word1=2,800,Lvl,%d", "Word1=300,800,Lvl,%d")));
  EXPECT_EQ(err, "Reading error in section REGISTER_1");
  EXPECT_EQ(d.Columns[1].Defined, -1);
  EXPECT_TRUE(textFilesRead.empty());
}

TEST_F(Loader, FileErrorsAreWrapped) {
  const std::string upper = files.WriteEnciphered("trace.VTL", kPlain);
  d.DescriptionFile = upper;
  EXPECT_FALSE(LoadDescription(d, 16, sources, err));
  EXPECT_EQ(err, "Error in description file :\n" + upper + "\r\rBad source file extension !");

  d.DescriptionFile = files.Write("plain.vtl", kPlain);
  EXPECT_FALSE(LoadDescription(d, 16, sources, err));
  EXPECT_EQ(err, "Error in description file :\n" + d.DescriptionFile + "\r\rIncorrect file !");

  d.DescriptionFile = files.Path("missing.vtld");
  EXPECT_FALSE(LoadDescription(d, 16, sources, err));
  EXPECT_EQ(err, "File not found");
}

TEST_F(Loader, NoUsableTemporaryDirectoryFailsTheLoad) {
  ::setenv("TMPDIR", files.Path("absent").c_str(), 1);
  EXPECT_FALSE(Load(kPlain));
  EXPECT_EQ(err, "Path/File access error");
  EXPECT_FALSE(std::filesystem::exists(files.Path("absent")));
}

TEST_F(Loader, TextFilePatternsAreSearchedInEveryDirectory) {
  for (const char* name : {"p/b.txt", "p/A.txt", "r/c.txt", "r/c.dat"})
    files.Write(name, "x");
  const std::string p = files.Path("p");
  const std::string r = files.Path("r") + "\\";
  sources.textFileDirectories = {p, "", r};
  ASSERT_TRUE(Load(kPlain + "[DRIVER]\nTextFile=*.txt\n"));  // the first [DRIVER] wins
  EXPECT_TRUE(textFilesRead.empty());

  ASSERT_TRUE(Load(Replace(kPlain, "ColumnWidth=900", "ColumnWidth=900\nTextFile=*.txt")));
  EXPECT_EQ(textFilesRead, (std::vector<std::string>{p + "/A.txt", p + "/b.txt", r + "c.txt"}));
}

TEST_F(Loader, TextFileFailureIsShownAndTheLoadSucceeds) {
  sources.textFileDirectories = {"a", "b"};
  int calls = 0;
  sources.readValueTextFile = [&](const std::string&) {
    ++calls;
    throw RuntimeError::Overflow();
  };
  ASSERT_TRUE(Load(Replace(kPlain, "ColumnWidth=900", "ColumnWidth=900\nTextFile=t.txt")));
  EXPECT_EQ(calls, 1);
  ASSERT_EQ(prompts.Messages().size(), 1U);
  EXPECT_EQ(prompts.Messages()[0].text, "SearchTextFile Function Error : Overflow");
  EXPECT_EQ(prompts.Messages()[0].title, "Vantrel");
}

}  // namespace
}  // namespace vantrel
