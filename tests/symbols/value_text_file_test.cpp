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

const std::string kGate = "[Vantrel]\nKey=ABCD\n";

struct ValueTextFile : ::testing::Test {
  void Read(const std::string& content, const std::string& headerKey = "ABCD") {
    std::ofstream(dir.File("texts.txt"), std::ios::binary) << content;
    ReadValueTextFile(values, dir.File("texts.txt"), headerKey, prompts);
  }
  // The keys in collection order, joined by "|".
  std::string KeysOf() const {
    std::string keys;
    for (int32_t i = 1; i <= values.Count(); ++i)
      keys += (i > 1 ? "|" : "") + values.KeyAt(i);
    return keys;
  }
  testing::TempDir dir;
  ScriptedPrompts prompts;
  cValues values;
};

TEST_F(ValueTextFile, WhichLinesGiveWhichKeys) {
  const std::string simple = "[Application]\n1=Pump\n[State]\n3=Running\n";
  const std::string simpleKeys = "1_Application_0|1_State_3";
  for (const auto& [content, keys] : std::vector<std::pair<std::string, std::string>>{
           {"[vantrel]\n  key = ABCD ; this buffer\n" + simple, simpleKeys},
           // Lines before the key line, and keys outside [Vantrel], do not count.
           {"[Application]\n0=Early\n[Other]\nKey=ABCD\n[Application]\n5=StillEarly\n" + kGate +
                simple,
            simpleKeys},
           {kGate + "[Application]\n1=Pump\n[State]\n4=Idle\n[Application]\n2=Fan\n[State]\n3=R\n",
            "1_Application_0|1_State_4|2_Application_0|1_State_3|2_State_3"},
           {kGate + "[Application]\n1,2=Both\n[State]\n3=Running\n",
            "1,2_Application_0|1_State_3|2_State_3"},
           {kGate + "[State]\n3=Running\n", ""},
           {kGate + "[Application]\n1 = Pump\n[State]\n3=Running\n", "1 _Application_0|1 _State_3"},
           {kGate + "[Application]\n1=P\n[State]\nx=No\n&H10=S\n20..22=T\n-4=M\n2.5=R\n",
            "1_Application_0|1_State_0|1_State_16|1_State_20|1_State_-4|1_State_2"},
           {kGate + "[Application]\n; 9=C\n\n   \nNoEquals\n1=Pump\n[State]\nStray\n3=Running\n",
            simpleKeys},
           {kGate + "[Application]\n1=Pump\n[State\n3=Lost\n[Mode]\n2=Auto\n",
            "1_Application_0|1_Mode_2"},
           // Once the key matched even [Vantrel] is a value section, its Key line value 0.
           {kGate + "[Application]\n1=Pump\n[Vantrel]\n5=Own\nKey=OTHER\n",
            "1_Application_0|1_Vantrel_5|1_Vantrel_0"},
           {kGate + "[application]\n1=Pump\n[state]\n3=Running\n", "1_Application_0|1_state_3"}}) {
    values = cValues{};
    Read(content);
    EXPECT_EQ(KeysOf(), keys) << content;
  }
  values = cValues{};
  Read(kGate + simple, "abcd");  // the key is compared exactly
  EXPECT_EQ(KeysOf(), "");
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(ValueTextFile, TextsCommentsAndValuesAndTheFirstTextOfAKeyStays) {
  Read(kGate + "[Application]\n\t2 = Fan\n[state]\n\t3 = Running ; ok \n");
  EXPECT_EQ(values.Item("2 _Application_0").Text(), "Fan");
  const cValue& running = values.Item("2 _State_3");
  EXPECT_EQ(running.Text() + "|" + running.Comment() + "|" + std::to_string(running.Value()),
            "Running|ok|3");
  Read(kGate + "[Application]\n2 =Other\n[State]\n3=Stopped\n4=Idle\n");
  EXPECT_EQ(values.Item("2 _State_3").Text(), "Running");
  EXPECT_EQ(values.Item("2 _State_4").Text(), "Idle");
}

// A value beyond 32 bits ends the file with a message (the reference example shows it).
TEST_F(ValueTextFile, AMissingFileIsNoError) {
  ReadValueTextFile(values, dir.File("absent.txt"), "ABCD", prompts);
  EXPECT_TRUE(prompts.Messages().empty());
  EXPECT_EQ(values.Count(), 0);
}

}  // namespace
}  // namespace vantrel
