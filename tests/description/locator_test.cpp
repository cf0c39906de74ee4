#include "description/locator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "description/description_files.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

class Locator : public ::testing::Test {
 protected:
  int Locate(const std::string& name, const std::vector<std::string>& paths) {
    return LocateDescriptionFile(name, paths, prompts, found);
  }
  testing::DescriptionFiles files;
  ScriptedPrompts prompts;
  std::string found = "stale";
};

// In each directory in turn, "<name>*.vtld" before "<name>*.vtl", names in any case.
TEST_F(Locator, SearchOrder) {
  for (const char* name : {"1/Pump01.vtl", "2/Pump01.vtld", "3/Pump01.vtl", "3/Pump01x.vtld",
                           "3/Pump02.vtld", "4/pump01_b.VTLD", "4/PUMP01_a.vtld"})
    files.Write(name, "x");
  const auto dir = [&](const char* name) { return files.Path(name) + "/"; };
  EXPECT_EQ(Locate("Pump01", {dir("1"), dir("2")}), 1);
  EXPECT_EQ(found, dir("1") + "Pump01.vtl");
  EXPECT_EQ(Locate("Pump01", {"", dir("3")}), 1);
  EXPECT_EQ(found, dir("3") + "Pump01x.vtld");
  EXPECT_EQ(Locate("Pump01", {files.Path("4") + "\\ "}), 1);  // blanks after a path are cut
  EXPECT_EQ(found, files.Path("4") + "\\PUMP01_a.vtld");
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(Locator, NotFoundAsksAndNoEndsTheSearch) {
  std::filesystem::create_directories(files.Path("a/Pump01.vtld"));
  for (const char* name : {"a/Pump01.txt", "a/XPump01.vtl", "a/P1.vtld"})
    files.Write(name, "x");
  // Directories, other extensions and keys holding wildcards or separators match nothing.
  for (const char* key : {"Pump01", "P?", "a/P1"}) {
    prompts.QueueAnswer(MessageResult::No);
    EXPECT_EQ(Locate(key, {files.Path("a") + "/", files.Root().string()}), 0) << key;
    EXPECT_EQ(found, "") << key;
  }
  ASSERT_EQ(prompts.Messages().size(), 3U);
  const ShownMessage& question = prompts.Messages()[0];
  EXPECT_EQ(question.text, "The file Pump01.vtld was not found.\n\nDo you want to search it  ?");
  EXPECT_EQ(question.title, "Vantrel");
  EXPECT_EQ(question.icon, MessageIcon::Exclamation);
  EXPECT_EQ(question.buttons, MessageButtons::YesNo);
  EXPECT_TRUE(prompts.FileDialogs().empty());
}

TEST_F(Locator, YesOpensTheFileDialog) {
  const std::string chosen = files.Write("elsewhere/mine.vtl", "x");
  for (const std::optional<std::string>& choice :
       {std::optional<std::string>(chosen), std::optional<std::string>(),
        std::optional<std::string>(files.Path("not-there.vtld"))}) {
    prompts.QueueAnswer(MessageResult::Yes);
    prompts.QueueFileChoice(choice);
    EXPECT_EQ(Locate("Pump01", {}), choice == chosen ? 1 : 0);
    EXPECT_EQ(found, choice == chosen ? chosen : "");
  }
  ASSERT_EQ(prompts.FileDialogs().size(), 3U);
  const FileOpenRequest& dialog = prompts.FileDialogs()[0];
  EXPECT_EQ(dialog.defaultExtension, ".vtld");
  EXPECT_EQ(dialog.filter, "Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld");
  EXPECT_TRUE(dialog.fileMustExist);
}

}  // namespace
}  // namespace vantrel
