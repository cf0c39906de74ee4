// The simulated controller program and its ring of records.

#include "acquisition/simulation.h"

#include <gtest/gtest.h>

#include "support/module_fixture.h"
#include "support/recording_host.h"

namespace vantrel {
namespace {

using testing::ModuleFixture;

struct SimulationFixture : ModuleFixture {
  explicit SimulationFixture(int16_t recordLength = 3, int32_t records = 2) {
    m.description.RecordLength = recordLength;
    PrepareSimulation(m, 500, records);
    StartSimulation(m);
  }
};

TEST(Simulation, RecordsOfTheTwoSineValuesGoRoundTheRing) {
  SimulationFixture f;
  OnSimulationTimer(f.m);
  EXPECT_EQ(f.m.SimAngle1, 10);
  EXPECT_EQ(f.m.SimAngle2, 20);
  EXPECT_EQ((std::vector<int32_t>(f.m.SimRecords.begin(), f.m.SimRecords.begin() + 3)),
            (std::vector<int32_t>{117, 67, 22}));
  EXPECT_EQ(f.m.SimHeader[0], 1);
  EXPECT_EQ(f.m.SimHeader[3], 2);
  std::vector<int32_t> lastSlots = {f.m.SimHeader[1]};
  int16_t highest = 0;
  for (int tick = 2; tick <= 100; ++tick) {
    OnSimulationTimer(f.m);
    if (tick <= 4) lastSlots.push_back(f.m.SimHeader[1]);
    if (tick == 4) {
      EXPECT_EQ(f.m.SimRecords[2], 3 * 2 * 11) << "record 1 rewritten by the third tick";
      EXPECT_EQ(f.m.SimRecords[5], 4 * 2 * 11);
    }
    highest = std::max(highest, f.m.SimAngle2);
    EXPECT_LE(f.m.SimAngle1, 350);
  }
  EXPECT_EQ(lastSlots, (std::vector<int32_t>{1, 2, 1, 2}));
  EXPECT_EQ(f.m.SimRecords.size(), 7u);
  // Both angles wrap at 360; 36 ticks bring the first back to 0 after 350.
  EXPECT_EQ(highest, 340);
  EXPECT_EQ(f.m.SimAngle1, (100 % 36) * 10);
}

TEST(Simulation, NothingIsWrittenWithoutARecordLength) {
  SimulationFixture f(0, 5);
  OnSimulationTimer(f.m);
  EXPECT_EQ(f.m.SimHeader[0], 1);
  EXPECT_EQ(f.m.SimRecords, std::vector<int32_t>{0});
}

TEST(Simulation, SwitchingItOffResetsTheControl) {
  testing::ControlFixture f;
  f->SetSimulation(true);
  f->SetSimulation(false);
  EXPECT_FALSE(f->Simulation());
  EXPECT_EQ(f->GetSurface().title.caption, "No Buffer Selected");
}

}  // namespace
}  // namespace vantrel
