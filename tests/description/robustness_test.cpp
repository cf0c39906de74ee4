// Malformed files of every kind: random bytes and mutated valid files. The loaders must fail
// cleanly (a message, no exception), keep the description within its limits, and never leave
// a working copy behind.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "description/cipher.h"
#include "description/description_files.h"
#include "description/description_loader.h"
#include "description/user_buffer.h"

namespace vantrel {
namespace {

const std::string kDescription =
    "[VANTREL]\nApp=A\nKey=PMP1\nVersion=1\nHeaderLenght=16\nCounterIndex=4\nRecordLenght=3\n"
    "[DRIVER]\nTitle=T\nColumnWidth=900\nTextFile=*.txt\n"
    "[INFO]\nsome text\n"
    "[REGISTER_0]\nBit_0=1,,Run,%s \\0)Off \\1)On\nNibe1=2,600,Mode,%gm \\0..3)M \\)?\n"
    "[REGISTER_1]\nByte2=3,900,State,%s \\1 3 5..7)On \\)Unknown\nWord1=4,800,Level,%d\n"
    "[REGISTER_2]\nLong=5,1700,Time,%t\nStrg=6,4,Batch,%a\n";

const std::string kUserBuffer =
    "[VANTREL]\nUserBuffer=1\n[USER_BUFFER]\nTitle=T\nHeaderKey=TNK1\nHeaderType=1\n"
    "RecordLenght=3\nColumn=3\nRecordInterval=5\nRecordNumber=50\n"
    "Column1=0,Word,0,x,900,Level,%d,0\nColumn2=1,Nible,3,x,900,V,%b,0\n"
    "Column3=2,Long,0,x,1200,Flow,%d,0\n";

const std::vector<std::string> kTokens = {
    ",",   "%", "\\",        ")",     "=",           "..", " ",  "\n", "[",
    "]",   ";", "-",         "99999", "1e9",         "&H", "g",  "s",  "127",
    "128", "0", "REGISTER_", "\xE9",  "\\0..5000)x", "\r", "\t", "\"", "*"};

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  size_t Below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random_); }

  std::string Bytes() {
    std::string bytes(Below(400), '\0');
    for (char& c : bytes)
      c = static_cast<char>(Below(256));
    return bytes;
  }

  std::string Mutate(std::string text) {
    for (size_t edits = 1 + Below(8); edits > 0 && !text.empty(); --edits) {
      const size_t at = Below(text.size());
      switch (Below(4)) {
        case 0:
          text[at] = static_cast<char>(Below(256));
          break;
        case 1:
          text.insert(at, kTokens[Below(kTokens.size())]);
          break;
        case 2:
          text.erase(at, Below(20));
          break;
        default: {
          const size_t start = text.rfind('\n', at) == std::string::npos ? 0 : text.rfind('\n', at);
          text.insert(start, text.substr(start, text.find('\n', start + 1) - start));
        }
      }
    }
    return text;
  }

 private:
  std::mt19937 random_;
};

void ExpectWithinLimits(const TraceDescription& d, int iteration) {
  ASSERT_GE(d.ColumnCount, 0) << iteration;
  ASSERT_LE(d.ColumnCount, 127) << iteration;
  for (const ColumnDef& column : d.Columns) {
    ASSERT_EQ(column.Values.size(), column.ValueTexts.size()) << iteration;
    ASSERT_LT(column.Values.size(), 2048U) << iteration;
    if (column.Defined != 0) {
      ASSERT_GE(column.FieldType, 1) << iteration;
      ASSERT_LE(column.FieldType, 6) << iteration;
    }
  }
}

TEST(Robustness, MalformedDescriptions) {
  testing::DescriptionFiles files;
  files.Write("texts/a.txt", "x");
  Mutator mutator(20261123);
  int loaded = 0;
  for (int i = 0; i < 3000; ++i) {
    std::string bytes;
    switch (i % 4) {
      case 0:
        bytes = mutator.Bytes();
        break;
      case 1:
        bytes = mutator.Mutate(kDescription);  // not enciphered: mostly "Incorrect file !"
        break;
      default:
        bytes = EncipherText(mutator.Mutate(kDescription));
    }
    TraceDescription d;
    d.DescriptionFile = files.Write(i % 5 == 0 ? "d.vtl" : "d.vtld", bytes);
    DescriptionSources sources;
    sources.textFileDirectories = {files.Path("texts")};
    int textReads = 0;
    sources.readValueTextFile = [&](const std::string&) { ++textReads; };
    std::string err;
    const bool ok = LoadDescription(d, 16, sources, err);
    if (ok) {
      ++loaded;
      ASSERT_GE(d.ColumnCount, 1) << i;
    } else {
      ASSERT_FALSE(err.empty()) << i;
    }
    ExpectWithinLimits(d, i);
    ASSERT_TRUE(files.TempEntries().empty()) << i;
  }
  // The mutations must leave enough files intact to reach the column parser.
  EXPECT_GT(loaded, 300);
}

TEST(Robustness, MalformedUserBufferFiles) {
  testing::DescriptionFiles files;
  Mutator mutator(7);
  int loaded = 0;
  for (int i = 0; i < 1500; ++i) {
    const std::string bytes = i % 3 == 0 ? mutator.Bytes() : mutator.Mutate(kUserBuffer);
    TraceDescription d;
    std::optional<UserBufferSimulation> simulation;
    std::string err;
    const bool ok =
        LoadUserBuffer(d, files.Write("u.vtlr", bytes), "TNK1", i % 2 == 0, simulation, err);
    if (ok) ++loaded;
    ASSERT_TRUE(ok || !err.empty()) << i;
    ExpectWithinLimits(d, i);
  }
  EXPECT_GT(loaded, 100);
}

}  // namespace
}  // namespace vantrel
