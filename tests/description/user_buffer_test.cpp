#include "description/user_buffer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "description/description_files.h"

namespace vantrel {
namespace {

using testing::Replace;

const std::string kUserBuffer =
    "[VANTREL]\nUserBuffer=1\nVersion=1\n"
    "[USER_BUFFER]\nTitle=Tanks\nHeaderKey=TNK1\nHeaderType=1\nRecordLenght=3.5\nColumn=3\n"
    "RecordInterval=2.5\nRecordNumber=40\n"
    "Column1=0,Word,0,x,900,Level,%d,0\n"
    "Column2=1,Nible,3,x,900.5,Valves,%b,0\n"
    "Column3=2,Long,9,x,1200,Flow,%7h,0\n"
    "Column4=2,Bit,1,x,500,Extra,%d,0\n";

class UserBuffer : public ::testing::Test {
 protected:
  bool Load(const std::string& content, bool simulation = false, const std::string& key = "TNK1") {
    path = files.Write("tanks.vtlr", content);
    return LoadUserBuffer(d, path, key, simulation, simulationOut, err);
  }
  testing::DescriptionFiles files;
  TraceDescription d;
  std::optional<UserBufferSimulation> simulationOut;
  std::string path;
  std::string err;
};

// The reference examples show the usual columns and every refusal; these are the roundings,
// the unchecked positions, the simulation's figures and the refusals they leave out.
TEST_F(UserBuffer, ColumnsAndHeaderFields) {
  ASSERT_TRUE(Load(kUserBuffer)) << err;
  EXPECT_EQ(d.RecordLength, 4);  // 3.5 rounds to even
  EXPECT_EQ(d.ColumnCount, 3);
  EXPECT_EQ(d.Columns[2].Width, 900);
  EXPECT_EQ(d.Columns[3].Position, 9);  // not range-checked here
  EXPECT_EQ(d.Columns[4].Defined, 0);   // beyond Column=3
  EXPECT_FALSE(simulationOut.has_value());
  EXPECT_FALSE(Load(Replace(kUserBuffer, "RecordInterval=2.5", "RecordInterval=0"), true, "TNK1"));
  EXPECT_EQ(err, "Invalid record interval in the source file :\n" + path +
                     "\nRecordInterval must be above 0");
  ASSERT_TRUE(Load(Replace(kUserBuffer, "HeaderKey=TNK1\n", ""), true, ""));
  ASSERT_TRUE(simulationOut.has_value());
  EXPECT_EQ(simulationOut->intervalMs, 250);
  EXPECT_EQ(simulationOut->recordCount, 40);
  // A ring larger than any controller buffer (records x 4 registers) is refused.
  ASSERT_TRUE(Load(Replace(kUserBuffer, "RecordNumber=40", "RecordNumber=4095"), true, "TNK1"));
  EXPECT_FALSE(
      Load(Replace(kUserBuffer, "RecordNumber=40", "RecordNumber=2000000000"), true, "TNK1"));
  EXPECT_EQ(err, "Simulated ring too large in the source file :\n" + path +
                     "\nRecordNumber 2000000000 x RecordLenght 4 is above 16383 registers");
  EXPECT_FALSE(simulationOut.has_value());

  EXPECT_TRUE(Load(Replace(kUserBuffer, "UserBuffer=1", "UserBuffer=2")));
  EXPECT_FALSE(Load(Replace(kUserBuffer, "UserBuffer=1", "UserBuffer=x")));
  EXPECT_EQ(err, "No user buffer defined in the source file :\n" + path);
  EXPECT_FALSE(Load(kUserBuffer, false, "tnk1"));
  EXPECT_EQ(err, "Invalid header key in the source file :\n" + path);
  EXPECT_EQ(d.Title, "Tanks");  // read before the failing check
  EXPECT_FALSE(LoadUserBuffer(d, files.Path("none.vtlr"), "TNK1", false, simulationOut, err));
  EXPECT_EQ(err, "No user buffer defined in the source file :\n" + files.Path("none.vtlr"));
  EXPECT_FALSE(LoadUserBuffer(d, files.Path(""), "TNK1", false, simulationOut, err));
  EXPECT_EQ(err, "Not a regular file :\n" + files.Path(""));
}

TEST_F(UserBuffer, ColumnLinesThatDoNotDefineAColumn) {
  for (const char* line :
       {"Column1=0,Nibe,0,x,9,L,%d,0", "Column1=0, Word,0,x,900,Level,%d,0",
        "Column1=0,Word,0,x,900,L,%d", "Column1=0,Word,99999,x,900,Level,%d,0"}) {
    const std::string one = Replace(Replace(kUserBuffer, "Column=3", "Column=1"),
                                    "Column1=0,Word,0,x,900,Level,%d,0", line);
    EXPECT_FALSE(Load(one)) << line;
    EXPECT_EQ(err, "No valid section founded.") << line;
  }
}

TEST_F(UserBuffer, ColumnCountIsClearedAndBoundedTo127) {
  d.ColumnCount = 90;
  d.Columns[50].Defined = -1;
  std::string many = Replace(kUserBuffer, "Column=3", "Column=200");
  many += "Column127=0,Bit,0,x,1,A,%d,0\nColumn128=0,Bit,0,x,1,B,%d,0\n";
  ASSERT_TRUE(Load(many));
  EXPECT_EQ(d.ColumnCount, 127);
  EXPECT_EQ(d.Columns[50].Defined, 0);
  EXPECT_EQ(d.Columns[127].Caption, "A");
}

TEST(UserBufferName, MustEndInVtlr) {
  for (const char* good : {"trace.vtlr", "C:\\x\\TRACE.VTLR", "abcd"})
    EXPECT_TRUE(HasUserBufferExtension(good)) << good;
  for (const char* bad : {"trace.vtlr.bak", "abcde", "a.vtlr.vtlr"})
    EXPECT_FALSE(HasUserBufferExtension(bad)) << bad;
}

}  // namespace
}  // namespace vantrel
