#include "description/locator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "description/description_files.h"
#include "vantrel/scripted_prompts.h"

namespace vantrel {
namespace {

const std::string kQuestion = "The file Pump01.vtld was not found.\n\nDo you want to search it  ?";

class Locator : public ::testing::Test {
 protected:
  std::string Dir(const std::string& name) const { return files.Path(name) + "/"; }
  int Locate(const std::string& name, const std::vector<std::string>& paths) {
    return LocateDescriptionFile(name, paths, prompts, found);
  }
  testing::DescriptionFiles files;
  ScriptedPrompts prompts;
  std::string found = "stale";
};

TEST_F(Locator, AnEarlierDirectoryBeatsTheEncipheredExtension) {
  files.Write("a/Pump01.vtl", "x");
  files.Write("b/Pump01.vtld", "x");
  EXPECT_EQ(Locate("Pump01", {Dir("a"), Dir("b")}), 1);
  EXPECT_EQ(found, Dir("a") + "Pump01.vtl");
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(Locator, WithinADirectoryTheEncipheredFileWinsAndAnySuffixMatches) {
  files.Write("a/Pump01.vtl", "x");
  files.Write("a/Pump01x.vtld", "x");
  files.Write("a/Pump02.vtld", "x");
  EXPECT_EQ(Locate("Pump01", {"", Dir("a")}), 1);
  EXPECT_EQ(found, Dir("a") + "Pump01x.vtld");
}

TEST_F(Locator, NamesMatchWithoutCaseInAStableOrder) {
  files.Write("a/pump01_b.VTLD", "x");
  files.Write("a/PUMP01_a.vtld", "x");
  EXPECT_EQ(Locate("Pump01", {files.Path("a") + "\\"}), 1);
  EXPECT_EQ(found, files.Path("a") + "\\PUMP01_a.vtld");
}

TEST_F(Locator, DirectoriesAndOtherExtensionsAreNotDescriptions) {
  std::filesystem::create_directories(files.Path("a/Pump01.vtld"));
  files.Write("a/Pump01.txt", "x");
  files.Write("a/Pump01.vtlr", "x");
  files.Write("a/XPump01.vtl", "x");
  prompts.QueueAnswer(MessageResult::No);
  EXPECT_EQ(Locate("Pump01", {Dir("a")}), 0);
  EXPECT_EQ(found, "");
}

TEST_F(Locator, NotFoundAsksAndNoEndsTheSearch) {
  prompts.QueueAnswer(MessageResult::No);
  EXPECT_EQ(Locate("Pump01", {Dir("a")}), 0);
  EXPECT_EQ(found, "");
  ASSERT_EQ(prompts.Messages().size(), 1U);
  const ShownMessage& question = prompts.Messages()[0];
  EXPECT_EQ(question.text, kQuestion);
  EXPECT_EQ(question.title, "Vantrel");
  EXPECT_EQ(question.icon, MessageIcon::Exclamation);
  EXPECT_EQ(question.buttons, MessageButtons::YesNo);
  EXPECT_TRUE(prompts.FileDialogs().empty());
}

TEST_F(Locator, YesOpensTheFileDialog) {
  const std::string chosen = files.Write("elsewhere/mine.vtl", "x");
  prompts.QueueAnswer(MessageResult::Yes);
  prompts.QueueFileChoice(chosen);
  EXPECT_EQ(Locate("Pump01", {}), 1);
  EXPECT_EQ(found, chosen);
  ASSERT_EQ(prompts.FileDialogs().size(), 1U);
  const FileOpenRequest& dialog = prompts.FileDialogs()[0];
  EXPECT_EQ(dialog.defaultExtension, ".vtld");
  EXPECT_EQ(dialog.filter, "Vantrel Files (*.vtl,*.vtld)|*.vtl,*.vtld");
  EXPECT_TRUE(dialog.fileMustExist);
}

TEST_F(Locator, CancelledDialogFindsNothing) {
  prompts.QueueAnswer(MessageResult::Yes);
  prompts.QueueFileChoice(std::nullopt);
  EXPECT_EQ(Locate("Pump01", {}), 0);
  EXPECT_EQ(found, "");

  prompts.QueueAnswer(MessageResult::Yes);
  prompts.QueueFileChoice(files.Path("not-there.vtld"));
  EXPECT_EQ(Locate("Pump01", {}), 0);
}

TEST_F(Locator, KeysAreTakenLiterally) {
  files.Write("a/P1.vtld", "x");
  files.Write("a/sub/P1.vtld", "x");
  prompts.QueueAnswer(MessageResult::No);
  EXPECT_EQ(Locate("P?", {Dir("a")}), 0);
  prompts.QueueAnswer(MessageResult::No);
  EXPECT_EQ(Locate("sub/P1", {Dir("a")}), 0);
}

}  // namespace
}  // namespace vantrel
