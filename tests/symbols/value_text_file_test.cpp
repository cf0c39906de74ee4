// Value-text files: the buffer key that gates them, the applications that value lines fan
// out to, and the collection of texts keyed by application, section and value.

#include "symbols/value_text_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/temp_dir.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

constexpr const char* kGate = "[Vantrel]\nKey=ABCD\n";

struct ValueTextFileTest : ::testing::Test {
  testing::TempDir dir;
  ScriptedPrompts prompts;
  cValues values;

  void Read(const std::string& content, const std::string& headerKey = "ABCD") {
    const std::string path = dir.File("texts.txt");
    std::ofstream(path, std::ios::binary) << content;
    ReadValueTextFile(values, path, headerKey, prompts);
  }

  std::vector<std::string> Keys() const {
    std::vector<std::string> keys;
    for (int32_t i = 1; i <= values.Count(); ++i)
      keys.push_back(values.KeyAt(i));
    return keys;
  }
};

TEST_F(ValueTextFileTest, OnlyAFileNamingTheBuffersExactKeyCounts) {
  const std::string file = std::string(kGate) + "[Application]\n1=Pump\n[State]\n3=Running\n";
  Read(file, "ABCE");
  EXPECT_EQ(values.Count(), 0);
  Read(file, "abcd");
  EXPECT_EQ(values.Count(), 0);
  Read(file, "ABCD");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_3"}));
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(ValueTextFileTest, TheKeyLineMayCarryBlanksAndAComment) {
  Read("[vantrel]\n  key = ABCD ; this buffer\n[Application]\n1=Pump\n");
  EXPECT_EQ(Keys(), std::vector<std::string>{"1_Application_0"});
}

TEST_F(ValueTextFileTest, LinesBeforeTheKeyLineAndKeysOutsideVantrelDoNotCount) {
  Read(
      "[Application]\n0=Early\n"
      "[Other]\nKey=ABCD\n"
      "[Application]\n5=StillEarly\n"
      "[Vantrel]\nKey=ABCD\n"
      "[Application]\n1=Pump\n"
      "[State]\n3=Running\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_3"}));
}

TEST_F(ValueTextFileTest, ValueLinesFanOutToEveryApplicationDeclaredBefore) {
  Read(std::string(kGate) +
       "[Application]\n1=Pump;main pump\n"
       "[State]\n4=Idle\n"
       "[Application]\n2=Fan\n"
       "[State]\n3=Running;ok\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_4", "2_Application_0",
                                              "1_State_3", "2_State_3"}));
  EXPECT_EQ(values.Item("1_Application_0").Text(), "Pump");
  EXPECT_EQ(values.Item("1_Application_0").Comment(), "main pump");
  EXPECT_EQ(values.Item("1_Application_0").Value(), 0);
  EXPECT_EQ(values.Item("2_Application_0").Text(), "Fan");
  EXPECT_EQ(values.Item("2_Application_0").Comment(), "");
  for (const char* key : {"1_State_3", "2_State_3"}) {
    EXPECT_EQ(values.Item(key).Text(), "Running") << key;
    EXPECT_EQ(values.Item(key).Comment(), "ok") << key;
    EXPECT_EQ(values.Item(key).Value(), 3) << key;
  }
}

TEST_F(ValueTextFileTest, AnApplicationIdWithACommaCountsAsSeveralForValueLines) {
  Read(std::string(kGate) + "[Application]\n1,2=Both\n[State]\n3=Running\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1,2_Application_0", "1_State_3", "2_State_3"}));
}

TEST_F(ValueTextFileTest, WithoutApplicationsValueLinesAddNothing) {
  Read(std::string(kGate) + "[State]\n3=Running\n");
  EXPECT_EQ(values.Count(), 0);
}

TEST_F(ValueTextFileTest, TheApplicationIdIsNotTrimmedBeyondTheLine) {
  Read(std::string(kGate) + "[Application]\n1 = Pump\n[State]\n3=Running\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1 _Application_0", "1 _State_3"}));
  EXPECT_EQ(values.Item("1 _Application_0").Text(), "Pump");
}

TEST_F(ValueTextFileTest, TabsAndBlanksAroundTheParts) {
  Read(std::string(kGate) + "[Application]\n\t1=Pump\n[Alarm]\n\t7 = Alarm ; high\n");
  const cValue& alarm = values.Item("1_Alarm_7");
  EXPECT_EQ(alarm.Value(), 7);
  EXPECT_EQ(alarm.Text(), "Alarm");
  EXPECT_EQ(alarm.Comment(), "high");
}

TEST_F(ValueTextFileTest, ValuesAreLeadingNumbersWithoutRanges) {
  Read(std::string(kGate) +
       "[Application]\n1=Pump\n"
       "[State]\n"
       "x=No number\n"
       "&H10=Sixteen\n"
       "20..22=Twenty\n"
       "-4=Minus\n"
       "2.5=Rounded\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_0", "1_State_16",
                                              "1_State_20", "1_State_-4", "1_State_2"}));
  EXPECT_EQ(values.Item("1_State_0").Text(), "No number");
  EXPECT_EQ(values.Item("1_State_2").Text(), "Rounded");
}

TEST_F(ValueTextFileTest, CommentsEmptyLinesAndLinesWithoutEqualsAreSkipped) {
  Read(std::string(kGate) +
       "[Application]\n"
       "; 9=Commented\n"
       "\n"
       "   \n"
       "NoEquals\n"
       "1=Pump\n"
       "[State]\n"
       "Stray text\n"
       "3=Running\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_3"}));
}

TEST_F(ValueTextFileTest, AHeaderWithoutClosingBracketIgnoresTheLinesUnderIt) {
  Read(std::string(kGate) +
       "[Application]\n1=Pump\n"
       "[State\n3=Lost\n"
       "[Mode]\n2=Auto\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_Mode_2"}));
}

TEST_F(ValueTextFileTest, OnceTheKeyMatchedEvenVantrelIsAValueSection) {
  Read(std::string(kGate) +
       "[Application]\n1=Pump\n"
       "[Vantrel]\n5=Own\nKey=OTHER\n");
  // The second Key line does not close the gate: it reads as value 0.
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_Vantrel_5", "1_Vantrel_0"}));
  EXPECT_EQ(values.Item("1_Vantrel_0").Text(), "OTHER");
}

TEST_F(ValueTextFileTest, SectionNamesAreKeptAsWrittenAndFoundInAnyCase) {
  Read(std::string(kGate) + "[application]\n1=Pump\n[state]\n3=Running\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_state_3"}));
  EXPECT_EQ(values.Item("1_State_3").Text(), "Running");
}

TEST_F(ValueTextFileTest, AValueBeyond32BitsEndsTheFileKeepingWhatWasAdded) {
  Read(std::string(kGate) + "[Application]\n1=Pump\n[State]\n1=One\n99999999999=Big\n2=Two\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_1"}));
  ASSERT_EQ(prompts.Messages().size(), 1u);
  EXPECT_EQ(prompts.Messages()[0].text, "ReadText File Overflow");
}

TEST_F(ValueTextFileTest, AMissingFileIsNoError) {
  ReadValueTextFile(values, dir.File("absent.txt"), "ABCD", prompts);
  EXPECT_EQ(values.Count(), 0);
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(ValueTextFileTest, SeveralFilesAddToOneCollection) {
  Read(std::string(kGate) + "[Application]\n1=Pump\n[State]\n3=Running\n");
  Read(std::string(kGate) + "[Application]\n1=Other pump\n[State]\n3=Stopped\n4=Idle\n");
  EXPECT_EQ(Keys(), (std::vector<std::string>{"1_Application_0", "1_State_3", "1_State_4"}));
  EXPECT_EQ(values.Item("1_State_3").Text(), "Running");
}

}  // namespace
}  // namespace vantrel
