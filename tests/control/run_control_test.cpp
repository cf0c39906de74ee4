#include <gtest/gtest.h>

#include "support/recording_host.h"

namespace vantrel {
namespace {

using testing::ControlFixture;
using testing::Packed;
using testing::RecordedEvent;
using Answer = testing::RecordingHost::Answer;

constexpr int16_t kStartRegister = 100;
constexpr int32_t kBufferStart = 1000;

// A controller with a valid "VTL2" buffer at register 1000, announced in register 100.
void WriteBuffer(testing::RegisterImage& image, int32_t pointer = kBufferStart) {
  image.registers[kStartRegister] = pointer;
  const int32_t header[16] = {Packed("VTL2"), Packed("PMP1"), 3, 200, 0, 0, 0, 10};
  for (int i = 0; i < 16; ++i)
    image.registers[kBufferStart + i] = header[i];
}

// A fixture whose control has read the pointer and stands at state 2, "Stoped".
struct PointerRead : ControlFixture {
  PointerRead() {
    WriteBuffer(host.image);
    host.answer = Answer::Inside;
    control->SetStartRegister(kStartRegister);
    control->Start();
    host.ClearEvents();
  }
};

TEST(StatusLine, EnablingAppliesTheStopModeAfterTheIdleText) {
  struct Trace : SurfaceObserver {
    const Control* c = nullptr;
    std::vector<std::string> texts;
    void SurfaceChanged() override {
      if (texts.empty() || texts.back() != c->GetSurface().status.caption)
        texts.push_back(c->GetSurface().status.caption);
    }
  } trace;
  ControlFixture f;
  trace.c = &*f;
  f->AddSurfaceObserver(&trace);
  f->SetEnabled(false);
  f->SetEnabled(true);
  EXPECT_EQ(trace.texts, (std::vector<std::string>{"Disabled", "Wait start register", "Stoped"}));
  f->RemoveSurfaceObserver(&trace);
}

TEST(StatusLine, StartAsksForTheStartRegisterAndWaits) {
  ControlFixture f;
  f->SetStartRegister(kStartRegister);
  f.host.ClearEvents();
  f->Start();
  EXPECT_EQ(f->ReadState(), 1);
  EXPECT_EQ(f->GetSurface().status.caption, "Wait start register");
  EXPECT_EQ(f.host.events,
            (std::vector<RecordedEvent>{{"Status", {1}, ""}, {"ReadPCDReg", {100, 1}, ""}}));
}

TEST(StatusLine, StartAndDataBlocksDoNothingWhileDisabled) {
  ControlFixture f;
  f->SetEnabled(false);
  f.host.ClearEvents();
  f->Start();
  const int32_t word = 1000;
  f->SetDataBlock(std::span(&word, 1));
  EXPECT_TRUE(f.host.events.empty());
  EXPECT_EQ(f->ReadState(), 0);
}

TEST(RunMode, RunBeforeThePointerIsReadFallsBackToStop) {
  ControlFixture f;
  f->SetStartRegister(kStartRegister);
  f->Start();
  f->SetRunMode(2);
  EXPECT_EQ(f->RunMode(), 0);
  f.loop.Advance(10'000);
  EXPECT_EQ(f.host.Named("ReadPCDReg").size(), 1u) << "the read timer must stay stopped";
  f->SetRunMode(1);
  EXPECT_EQ(f->RunMode(), 0);
}

// Read once shows "runing" and ends paused, run mode 2 shows "running".
TEST(RunMode, ReadOnceReadsTheCounterAreaOnceAndEndsPaused) {
  PointerRead f;
  f->SetRunMode(3);
  EXPECT_EQ(f.host.Statuses(), std::vector<int16_t>{3});
  EXPECT_EQ(f->GetSurface().status.caption, "Refresh mode runing");
  EXPECT_EQ(f.host.Named("ReadPCDReg"),
            (std::vector<RecordedEvent>{{"ReadPCDReg", {1004, 4}, ""}}));
  EXPECT_EQ(f->RunMode(), 1);
  f.loop.Advance(10'000);
  EXPECT_EQ(f.host.Named("ReadPCDReg").size(), 1u);
  f->SetRunMode(2);
  EXPECT_EQ(f->GetSurface().status.caption, "Refresh mode running");
  f->SetRunMode(0);
  EXPECT_EQ(f->GetSurface().status.caption, "Stoped");
  EXPECT_EQ(f->ReadState(), 2);
}

TEST(RunMode, PauseAndSettingTheCurrentValueAgain) {
  PointerRead f;
  f->SetRunMode(1);
  EXPECT_EQ(f->GetSurface().status.caption, "Refresh mode paused");
  EXPECT_EQ(f->ReadState(), 3);
  f.host.ClearEvents();
  const std::string before = f->GetSurface().status.caption;
  f->SetEnabled(true);  // idle update does nothing outside run mode 0
  f->SetRunMode(1);
  EXPECT_EQ(f->GetSurface().status.caption, before);
  EXPECT_TRUE(f.host.events.empty());
}

TEST(RunMode, RunReadsTheHeaderAndReportsTheMissingDescription) {
  PointerRead f;
  f->SetRunMode(2);
  EXPECT_EQ(f.host.Named("ReadPCDReg"),
            (std::vector<RecordedEvent>{{"ReadPCDReg", {1000, 16}, ""}}));
  EXPECT_EQ(f.host.Errors(),
            std::vector<std::string>{"10:No description file from driver found (*.vtl)"});
  EXPECT_EQ(f->ReadState(), 2);
  EXPECT_EQ(f->HeaderKey(), "PMP1");
  EXPECT_EQ(f->HeaderVersion(), 3);
  EXPECT_EQ(f->BufferLen(), 200);
}

TEST(RunMode, DisablingWhileRunningLeavesTheStatusAndStopsTheIntake) {
  PointerRead f;
  f->SetRunMode(3);
  f->SetRunMode(2);
  const std::string status = f->GetSurface().status.caption;
  f->SetEnabled(false);
  EXPECT_EQ(f->GetSurface().status.caption, status);
  f.host.ClearEvents();
  f.loop.Advance(1000);
  // The timer still asks, but answers are no longer taken in.
  EXPECT_EQ(f.host.Named("ReadPCDReg").size(), 1u);
  EXPECT_EQ(f->ReadState(), 3);
  EXPECT_TRUE(f.host.Named("Status").empty());
}

TEST(ReadTimer, PollsTheCounterAreaEveryIntervalWhileRunning) {
  PointerRead f;
  f->SetInterval(200);
  f->SetRunMode(3);
  f->SetRunMode(2);
  f.host.ClearEvents();
  f.loop.Advance(1000);
  const auto reads = f.host.Named("ReadPCDReg");
  ASSERT_EQ(reads.size(), 5u);
  for (const auto& r : reads)
    EXPECT_EQ(r.args, (std::vector<int32_t>{1004, 12}));
  f->SetRunMode(1);
  f.host.ClearEvents();
  f.loop.Advance(1000);
  EXPECT_TRUE(f.host.Named("ReadPCDReg").empty());
  EXPECT_FALSE(f->GetSurface().activityVisible);
}

}  // namespace
}  // namespace vantrel
