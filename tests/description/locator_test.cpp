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
  struct Case {
    std::vector<std::string> files;
    std::vector<std::string> directories;
    std::string expected;
  };
  for (const Case& c : std::vector<Case>{
           {{"a/Pump01.vtl", "b/Pump01.vtld"}, {"a/", "b/"}, "a/Pump01.vtl"},
           {{"a/Pump01.vtl", "a/Pump01x.vtld", "a/Pump02.vtld"}, {"", "a/"}, "a/Pump01x.vtld"},
           {{"a/pump01_b.VTLD", "a/PUMP01_a.vtld"}, {"a\\"}, "a\\PUMP01_a.vtld"}}) {
    const testing::DescriptionFiles dir;
    for (const std::string& file : c.files)
      dir.Write(file, "x");
    std::vector<std::string> paths;
    for (const std::string& d : c.directories)
      paths.push_back(d.empty() ? d : dir.Path(d.substr(0, 1)) + d.substr(1));
    EXPECT_EQ(Locate("Pump01", paths), 1) << c.expected;
    EXPECT_EQ(found, dir.Path(c.expected.substr(0, 1)) + c.expected.substr(1));
  }
  EXPECT_TRUE(prompts.Messages().empty());
}

TEST_F(Locator, NotFoundAsksAndNoEndsTheSearch) {
  std::filesystem::create_directories(files.Path("a/Pump01.vtld"));
  for (const char* name : {"a/Pump01.txt", "a/Pump01.vtlr", "a/XPump01.vtl", "a/P1.vtld"})
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
