// The control's intake of DataBlock answers, driven through the public interface.

#include <gtest/gtest.h>

#include "support/live_trace.h"
#include "support/recording_host.h"

namespace vantrel {
namespace {

using testing::ControlFixture;
using testing::LiveTrace;
using testing::Packed;

void Assign(Control& c, std::vector<int32_t> block) {
  c.SetDataBlock(block);
}

// A sixteen-word buffer header of ten registers.
std::vector<int32_t> Header(const char (&format)[5], const char (&key)[5]) {
  std::vector<int32_t> header(16, 0);
  header[0] = Packed(format);
  header[1] = Packed(key);
  header[3] = 10;
  return header;
}

TEST(Intake, InvalidStartRegisterOrHeaderIsReportedAndTheStateStays) {
  ControlFixture f;
  f->Start();
  f.host.ClearEvents();
  Assign(*f, {8001});
  EXPECT_EQ(f.host.Errors(),
            std::vector<std::string>{"10:Invalid buffer\rCheck the start register value"});
  EXPECT_EQ(f->ReadState(), 1);
  Assign(*f, {8000});
  EXPECT_EQ(f->ReadState(), 2);
  f.host.ClearEvents();
  Assign(*f, Header("VTL1", "AB\0\0"));
  EXPECT_EQ(f.host.Errors(), std::vector<std::string>{"11:Invalid buffer\rBad key value"});
  EXPECT_EQ(f->ReadState(), 2);
  EXPECT_TRUE(f.host.Named("Status").empty()) << "already in state 2: no Status event";
  EXPECT_FALSE(f->GetSurface().infoButton.enabled) << "every header read disables it";
}

TEST(Intake, ShortBlocksAreReportedNotReadPastTheirEnd) {
  ControlFixture f;
  f->Start();
  Assign(*f, {});
  EXPECT_EQ(f.host.Errors().back(),
            "10:DataBlock too short for the start register: 0 values received, 1 expected");
  Assign(*f, {500});
  Assign(*f, {Packed("VTL2"), Packed("PMP1"), 1});
  EXPECT_EQ(f.host.Errors().back(),
            "11:DataBlock too short for the buffer header: 3 values received, 16 expected");
  EXPECT_EQ(f->ReadState(), 2);
  f->SetRunMode(3);  // straight to the counter area
  f.host.ClearEvents();
  Assign(*f, {1, 2});
  EXPECT_EQ(f.host.Errors(),
            std::vector<std::string>{"12:DataBlock too short for the counter area: 2 values "
                                     "received, 4 expected"});
  EXPECT_EQ(f->ReadState(), 3);
}

// A counter area that contradicts the buffer stops the run before any register outside the
// ring is decoded: the walk would otherwise invent rows or lose records without a Miss row.
TEST(Intake, ACounterAreaThatContradictsTheBufferStopsTheRun) {
  struct Case {
    int32_t writeIndex, ring;
    const char* error;
  };
  for (const Case& c : {
           Case{1000, 8, "Write index 1000 lies outside the ring of 8 records"},
           Case{-3, 8, "Write index -3 lies outside the ring of 8 records"},
           Case{0, 0, "Ring size 0 is below 1"},
           Case{1, -5, "Ring size -5 is below 1"},
           Case{1, 2147483647, "Ring size 2147483647 does not fit the buffer of 200 words"},
       }) {
    SCOPED_TRACE(c.error);
    LiveTrace f({"0,Word,0,x,900,A,%d,0"}, 1);
    f.Add({{1}, {2}});
    ASSERT_EQ(f->Table().DataRowCount(), 2);
    f.host.image.registers[LiveTrace::kBuffer + 4] = 5;
    f.host.image.registers[LiveTrace::kBuffer + 5] = c.writeIndex;
    f.host.image.registers[LiveTrace::kBuffer + 7] = c.ring;
    f.Poll();
    EXPECT_EQ(f.host.Errors(),
              std::vector<std::string>{"12:Invalid counter area\r" + std::string(c.error)});
    EXPECT_EQ(f->Table().DataRowCount(), 2) << "no row is made of registers outside the ring";
    EXPECT_EQ(f->RunMode(), 0);
    f.Poll();
    EXPECT_EQ(f.host.Errors().size(), 1u) << "reading stopped";
  }
}

}  // namespace
}  // namespace vantrel
