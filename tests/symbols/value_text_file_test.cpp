// Value-text files: the buffer key that gates them, the applications that value lines fan
// out to, and the collection of texts keyed by application, section and value.

#include "symbols/value_text_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "support/temp_dir.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

using Keys = std::vector<std::string>;
const std::string kGate = "[Vantrel]\nKey=ABCD\n";

struct ValueTextFile : ::testing::Test {
  void Read(const std::string& content, const std::string& headerKey = "ABCD") {
    std::ofstream(dir.File("texts.txt"), std::ios::binary) << content;
    ReadValueTextFile(values, dir.File("texts.txt"), headerKey, prompts);
  }
  Keys KeysOf() const {
    Keys keys;
    for (int32_t i = 1; i <= values.Count(); ++i)
      keys.push_back(values.KeyAt(i));
    return keys;
  }
  testing::TempDir dir;
  ScriptedPrompts prompts;
  cValues values;
};

TEST_F(ValueTextFile, WhichLinesGiveWhichKeys) {
  struct Case {
    std::string content, headerKey;
    Keys keys;
  };
  const std::string simple = kGate + "[Application]\n1=Pump\n[State]\n3=Running\n";
  const Keys simpleKeys = {"1_Application_0", "1_State_3"};
  for (const Case& c : std::vector<Case>{
           {simple, "ABCE", {}},
           {simple, "abcd", {}},
           {simple, "ABCD", simpleKeys},
           {"[vantrel]\n  key = ABCD ; this buffer\n[Application]\n1=Pump\n[State]\n3=Running\n",
            "ABCD", simpleKeys},
           // Lines before the key line, and keys outside [Vantrel], do not count.
           {"[Application]\n0=Early\n[Other]\nKey=ABCD\n[Application]\n5=StillEarly\n" + simple,
            "ABCD", simpleKeys},
           {kGate + "[Application]\n1=Pump\n[State]\n4=Idle\n[Application]\n2=Fan\n[State]\n3=R\n",
            "ABCD",
            {"1_Application_0", "1_State_4", "2_Application_0", "1_State_3", "2_State_3"}},
           {kGate + "[Application]\n1,2=Both\n[State]\n3=Running\n",
            "ABCD",
            {"1,2_Application_0", "1_State_3", "2_State_3"}},
           {kGate + "[State]\n3=Running\n", "ABCD", {}},
           {kGate + "[Application]\n1 = Pump\n[State]\n3=Running\n",
            "ABCD",
            {"1 _Application_0", "1 _State_3"}},
           {kGate + "[Application]\n1=P\n[State]\nx=No\n&H10=S\n20..22=T\n-4=M\n2.5=R\n",
            "ABCD",
            {"1_Application_0", "1_State_0", "1_State_16", "1_State_20", "1_State_-4",
             "1_State_2"}},
           {kGate + "[Application]\n; 9=C\n\n   \nNoEquals\n1=Pump\n[State]\nStray\n3=Running\n",
            "ABCD", simpleKeys},
           {kGate + "[Application]\n1=Pump\n[State\n3=Lost\n[Mode]\n2=Auto\n",
            "ABCD",
            {"1_Application_0", "1_Mode_2"}},
           // Once the key matched even [Vantrel] is a value section, its Key line value 0.
           {kGate + "[Application]\n1=Pump\n[Vantrel]\n5=Own\nKey=OTHER\n",
            "ABCD",
            {"1_Application_0", "1_Vantrel_5", "1_Vantrel_0"}},
           {kGate + "[application]\n1=Pump\n[state]\n3=Running\n",
            "ABCD",
            {"1_Application_0", "1_state_3"}}}) {
    values = cValues{};
    Read(c.content, c.headerKey);
    EXPECT_EQ(KeysOf(), c.keys) << c.content;
  }
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(ValueTextFile, TextsCommentsAndValues) {
  Read(kGate +
       "[Application]\n1=Pump;main pump\n[Application]\n\t2 = Fan\n"
       "[state]\n\t3 = Running ; ok \n");
  for (const auto& [key, text, comment, value] :
       std::vector<std::tuple<std::string, std::string, std::string, int>>{
           {"1_Application_0", "Pump", "main pump", 0},
           {"2 _Application_0", "Fan", "", 0},
           {"1_State_3", "Running", "ok", 3},
           {"2 _State_3", "Running", "ok", 3}}) {
    EXPECT_EQ(values.Item(key).Text(), text) << key;
    EXPECT_EQ(values.Item(key).Comment(), comment) << key;
    EXPECT_EQ(values.Item(key).Value(), value) << key;
  }
  // A second file adds to the collection; the first text of a key stays.
  Read(kGate + "[Application]\n1=Other pump\n[State]\n3=Stopped\n4=Idle\n");
  EXPECT_EQ(values.Item("1_State_3").Text(), "Running");
  EXPECT_EQ(values.Item("1_State_4").Text(), "Idle");
}

TEST_F(ValueTextFile, AValueBeyond32BitsEndsTheFileAndAMissingFileIsNoError) {
  ReadValueTextFile(values, dir.File("absent.txt"), "ABCD", prompts);
  EXPECT_TRUE(prompts.Messages().empty());
  Read(kGate + "[Application]\n1=Pump\n[State]\n1=One\n99999999999=Big\n2=Two\n");
  EXPECT_EQ(KeysOf(), (Keys{"1_Application_0", "1_State_1"}));
  ASSERT_EQ(prompts.Messages().size(), 1u);
  EXPECT_EQ(prompts.Messages()[0].text, "ReadText File Overflow");
}

}  // namespace
}  // namespace vantrel
