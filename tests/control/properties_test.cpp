#include <gtest/gtest.h>

#include "control/resource_paths.h"
#include "support/recording_host.h"

namespace vantrel {
namespace {

using testing::ControlFixture;

void AddNumberedRow(TableModel& table, int number) {
  TableRow row;
  row.stamps.Append(std::to_string(number), {}, number, CellValue::Integer(number), {});
  table.AddRow(std::move(row));
}

struct ChangeRecorder : Container {
  std::vector<std::string> changed;
  void PropertyChanged(std::string_view name) override { changed.emplace_back(name); }
};

// Defaults other than zero or empty; Interval, MaxRows and MaxGraph are checked where they act.
TEST(ControlProperties, ANewControlHasItsDefaultsAndReportsDisabledOnce) {
  ControlFixture f;
  Control& c = *f;
  EXPECT_TRUE(c.Enabled());
  EXPECT_EQ(c.ResourcePath(), "C:\\");
  EXPECT_EQ(c.DisplayMode(), 1);
  EXPECT_EQ(c.GridFontName(), "Courier");
  EXPECT_EQ(c.GridFontSize(), "10");
  EXPECT_EQ(f.host.Statuses(), std::vector<int16_t>{0});
  EXPECT_EQ(c.GetSurface().title.caption, "No Buffer Selected");
  EXPECT_EQ(c.GetSurface().status.caption, "Disabled");
  // An empty table with its four stamp columns exists from the start.
  EXPECT_EQ(c.Table().ColumnCount(), 4);
  EXPECT_EQ(c.Table().RowCount(), 1);
}

TEST(ControlProperties, EnabledOnlySettersIgnoreValuesWhileDisabled) {
  ChangeRecorder container;
  ControlFixture f;
  f.Create(&container);
  f->SetProjectPath("/plant/a");
  f->SetEnabled(false);
  container.changed.clear();

  f->SetProjectPath("/plant/b");
  f->SetUserFile("x.vtlr");
  f->SetInterval(50);
  f->SetRunMode(2);
  EXPECT_EQ(f->ProjectPath(), "/plant/a");
  EXPECT_EQ(f->UserFile(), "");
  EXPECT_EQ(f->Interval(), 1000);
  EXPECT_EQ(f->RunMode(), 0);
  EXPECT_TRUE(container.changed.empty());

  // Setters that are always accepted still work and are saved.
  f->SetStartRegister(100);
  f->SetMaxRows(10);
  EXPECT_EQ(f->StartRegister(), 100);
  EXPECT_EQ((std::vector<std::string>{"StartRegister", "MaxRows"}), container.changed);
}

TEST(ControlProperties, MaxGraphHasAFloorOfTwenty) {
  ControlFixture f;
  f->SetMaxGraph(5);
  EXPECT_EQ(f->MaxGraph(), 20);
  f->SetMaxGraph(25);
  EXPECT_EQ(f->MaxGraph(), 25);
}

TEST(ControlProperties, StampColumnsShowOrHideTheirTableColumn) {
  ControlFixture f;
  f->Table().SetColumnWidth(1, 3000);  // the user dragged it wider
  f->SetDateStampCol(true);
  EXPECT_EQ(f->Table().ColumnWidth(1), 1100);
  f->Table().SetColumnWidth(1, 3000);
  f->SetDateStampCol(false);
  EXPECT_EQ(f->Table().ColumnWidth(1), 0);
  f->SetTimeStampCol(true);
  f->SetPCDStatusCol(true);
  EXPECT_EQ(f->Table().ColumnWidth(2), 1100);
  EXPECT_EQ(f->Table().ColumnWidth(3), 1100);
}

TEST(ControlProperties, MaxRowsTrimsTheOldestRows) {
  ControlFixture f;
  for (int i = 1; i <= 5; ++i)
    AddNumberedRow(f->Table(), i);
  f->SetMaxRows(3);
  ASSERT_EQ(f->Table().DataRowCount(), 3);
  EXPECT_EQ(f->Table().Text(1, 0), "3");
  EXPECT_EQ(f->GetSurface().rowCount.caption, "3");
  EXPECT_EQ(f->GetSurface().rowCount.foreColor, kColorRed);
  f->SetMaxRows(10);
  EXPECT_EQ(f->Table().DataRowCount(), 3);
  EXPECT_EQ(f->GetSurface().rowCount.foreColor, kColorBlack);
}

TEST(ResourcePaths, SplitsAtCommasAndEndsEachEntryInASeparator) {
  EXPECT_EQ(SplitResourcePath("C:\\a,,D:\\b"), (std::vector<std::string>{"C:\\a/", "", "D:\\b/"}));
  EXPECT_EQ(SplitResourcePath("/srv/vtl/ ,/opt/x\\"),
            (std::vector<std::string>{"/srv/vtl/", "/opt/x\\"}));
  EXPECT_TRUE(SplitResourcePath("").empty());
}

}  // namespace
}  // namespace vantrel
