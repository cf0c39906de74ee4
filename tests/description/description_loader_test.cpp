#include "description/description_loader.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cctype>
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

// Loads run in the test's own directory, which also holds the temporary directory.
class Loader : public ::testing::Test {
 protected:
  void SetUp() override {
    previous = std::filesystem::current_path();
    std::filesystem::current_path(files.Root());
    sources.readSymbolFile = [this] { ++symbolReads; };
    sources.readValueTextFile = [this](const std::string& path) { textFilesRead.push_back(path); };
    sources.prompts = &prompts;
  }
  void TearDown() override { std::filesystem::current_path(previous); }

  bool Load(const std::string& plain, const std::string& name = "d.vtld") {
    d.DescriptionFile = files.WriteEnciphered(name, plain);
    return LoadDescription(d, 12, sources, err);
  }

  std::filesystem::path previous;
  testing::DescriptionFiles files;
  TraceDescription d;
  DescriptionSources sources;
  ScriptedPrompts prompts;
  std::string err;
  int symbolReads = 0;
  std::vector<std::string> textFilesRead;
};

// Notices every file created in the directories while it lasts, even one removed again
// at once.
class CreationWatch {
 public:
  explicit CreationWatch(const std::vector<std::string>& directories)
      : fd_(::inotify_init1(IN_NONBLOCK)) {
    for (const std::string& directory : directories)
      EXPECT_GE(::inotify_add_watch(fd_, directory.c_str(), IN_CREATE | IN_MOVED_TO), 0);
  }
  ~CreationWatch() { ::close(fd_); }
  CreationWatch(const CreationWatch&) = delete;
  CreationWatch& operator=(const CreationWatch&) = delete;
  bool SawCreation() const {
    alignas(inotify_event) char buffer[4096];
    return ::read(fd_, buffer, sizeof buffer) > 0;
  }

 private:
  int fd_;
};

// The plain text exists only in memory: neither the temporary nor the working directory
// gets a file, not even for a moment, and no temporary directory is needed at all.
TEST_F(Loader, WritesNoFile) {
  // Symbol columns in two sections: the symbol file is still read once per load.
  const std::string symbols = Replace(Replace(kPlain, "Run,%d", "Run,%gs"), "Lvl,%d", "Lvl,%g");
  d.DescriptionFile = files.WriteEnciphered(
      "d.vtld", Replace(symbols, "ColumnWidth=900", "ColumnWidth=900\nTextFile=t"));
  sources.textFileDirectories = {"."};
  const CreationWatch watch({files.Root().string(), files.Root().string() + "/tmp"});
  ASSERT_TRUE(LoadDescription(d, 16, sources, err)) << err;
  EXPECT_FALSE(watch.SawCreation());
  EXPECT_EQ(symbolReads, 1);
  EXPECT_EQ(textFilesRead, std::vector<std::string>{"./t"});

  ::setenv("TMPDIR", files.Path("absent").c_str(), 1);
  EXPECT_TRUE(Load(kPlain)) << err;
  EXPECT_FALSE(std::filesystem::exists(files.Path("absent")));
}

// The reference examples show the usual fields and the error of every missing key; these are
// the spellings they leave out: rounding, any case, the information text, sections beyond
// the record.
TEST_F(Loader, FieldsOfTheHeaderAndDriverSections) {
  ASSERT_TRUE(Load(kPlain + "[INFO]\nline one\n\nline two\n[REGISTER_2]\nBit_0=9,,X,%d\n"));
  EXPECT_EQ(d.DescVersion, 2);  // 2.5 rounds to even
  EXPECT_EQ(d.StringIndex, "5,6");
  EXPECT_EQ(d.InfoText, "line one\rline two");
  EXPECT_EQ(d.ColumnCount, 2);  // REGISTER_2 lies beyond the record
  EXPECT_TRUE(textFilesRead.empty());
  std::string lower;
  for (char c : kPlain)
    lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  ASSERT_TRUE(Load(lower)) << err;  // section and key names match in any case
  EXPECT_EQ(d.Title, "north");
}

// Numbers are read by their leading numeric prefix, rounding halves to even; a failed check
// reports the value in force, not the rejected text.
TEST_F(Loader, HeaderAndDriverValues) {
  struct Case {
    std::string from, to, message;  // no message: the load succeeds
    int counterIndex, columnWidth;
  };
  const std::string header = "Invalid Header Lenght : 12";
  for (const Case& c :
       std::vector<Case>{{"CounterIndex=3", "CounterIndex=0.5", "", 0, 900},
                         {"CounterIndex=3", "CounterIndex=1.5", "", 2, 900},
                         {"CounterIndex=3", "CounterIndex=&H10", "", 16, 900},
                         {"HeaderLenght=16", "HeaderLenght=16abc", "", 3, 900},
                         {"ColumnWidth=900", "ColumnWidth=5", "", 3, 1000},
                         {"ColumnWidth=900", "ColumnWidth=10", "", 3, 10},
                         {"ColumnWidth=900", "ColumnWidth= 32767 ", "", 3, 32767},
                         {"ColumnWidth=900", "ColumnWidth=&H20", "", 3, 32},
                         {"ColumnWidth=900", "ColumnWidth=10.5", "", 3, 10},
                         {"HeaderLenght=16", "HeaderLenght=0", header, 7, 0},
                         {"HeaderLenght=16", "HeaderLenght=abc", header, 7, 0},
                         {"RecordLenght=2", "RecordLenght=-3", "Invalid Record Lenght : 9", 3, 0},
                         {"ColumnWidth=900", "ColumnWidth=12abc", "Type mismatch", 3, 0},
                         {"ColumnWidth=900", "ColumnWidth=1 2", "Type mismatch", 3, 0}}) {
    d = TraceDescription{};
    d.CounterIndex = 7;
    d.RecordLength = 9;
    EXPECT_EQ(Load(Replace(kPlain, c.from, c.to)), c.message.empty()) << c.to;
    EXPECT_EQ(err, c.message) << c.to;
    EXPECT_EQ(d.CounterIndex, c.counterIndex) << c.to;
    EXPECT_EQ(d.Columns[1].Width, c.columnWidth) << c.to;  // the column left its width empty
    err.clear();
  }
}

// A load starts from no defined or marked column, whatever the description before had.
TEST_F(Loader, ColumnFlagsAreReset) {
  d.ColumnCount = 50;
  d.Columns[5].Defined = -1;
  d.Columns[1].Marked = -1;
  ASSERT_TRUE(Load(kPlain)) << err;
  EXPECT_EQ(d.ColumnCount, 2);
  EXPECT_EQ(d.Columns[5].Defined, 0);
  EXPECT_EQ(d.Columns[1].Marked, 0);
}

// The text file is read once every register section was parsed, before the column check.
// An empty directory entry is passed over, never read as the root or the current directory.
TEST_F(Loader, TextFileComesAfterTheSectionsAndBeforeTheColumnCheck) {
  sources.textFileDirectories = {"", "dir"};
  const std::string withText =
      Replace(kPlain, "ColumnWidth=900", "ColumnWidth=900\nTextFile=t.txt");
  EXPECT_FALSE(Load(Replace(withText, "Word1=2,800,Lvl,%d", "Word1=300,800,Lvl,%d")));
  EXPECT_EQ(err, "Reading error in section REGISTER_1");
  EXPECT_EQ(d.Columns[1].Defined, -1);
  EXPECT_TRUE(textFilesRead.empty());

  EXPECT_FALSE(Load(Replace(Replace(withText, "Bit_0=1", "Bit_0=0"), "Word1=2", "Word1=0")));
  EXPECT_EQ(err, "No valid section founded.");  // column 0 alone does not count
  EXPECT_EQ(textFilesRead, std::vector<std::string>{"dir/t.txt"});
}

// Only names ending in ".vtld" or ".vtl" are deciphered, and the refusal names the file.
TEST_F(Loader, FileErrorsAreWrapped) {
  d.DescriptionFile = files.WriteEnciphered("trace.vtl.bak", kPlain);
  EXPECT_FALSE(LoadDescription(d, 16, sources, err));
  EXPECT_EQ(
      err, "Error in description file :\n" + d.DescriptionFile + "\r\rBad source file extension !");
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
