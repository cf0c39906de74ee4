#include "control/run_control.h"

#include "acquisition/reading_cycle.h"

namespace vantrel {

void ShowStatus(Module& m, std::string_view text) {
  m.surface.status.caption = std::string(text);
  m.SurfaceChanged();
}

void IdleUpdate(Module& m) {
  if (m.props.RunMode != kRunStop) return;
  m.readTimer->SetEnabled(false);
  ShowStatus(m, m.props.Enabled ? "Wait start register" : "Disabled");
}

void ShowGridView(Module& m) {
  m.surface.graphButton.caption = "Graph";
  m.GraphShown = false;
  m.surface.gridVisible = true;
  m.surface.chartVisible = false;
  m.grid.SetRedraw(true);
  m.SurfaceChanged();
}

namespace {

void RequestRecords(Module& m) {
  const int32_t count = int32_t{m.description.RecordLength} * m.buffer.RecordsToRead;
  m.buffer.ReadCount = static_cast<int16_t>(count);
  RequestRead(m, static_cast<int16_t>(count));
}

void ApplyRun(Module& m) {
  if (m.buffer.ReadState < kStateHeader) {
    m.props.RunMode = kRunStop;
    return;
  }
  if (m.buffer.ReadState == kStateHeader) {
    ResetWalkCounters(m);
    m.walk.RecordNumber = 0;
    m.buffer.RecordsToRead = 0;
    RequestRead(m, m.buffer.HeaderLength);
  }
  if (m.buffer.ReadState == kStateRunning) {
    m.readTimer->SetEnabled(true);
    ShowStatus(m, "Refresh mode running");
    RequestRead(m, static_cast<int16_t>(m.description.CounterIndex + 8));
  }
  if (m.buffer.ReadState == kStateLoading) {
    RequestRecords(m);
    if (m.buffer.ReadState == kStateRunning && m.props.RunMode == kRunRefresh) {
      m.readTimer->SetEnabled(true);
    }
  }
}

void ApplyReadOnce(Module& m) {
  if (m.buffer.ReadState == kStateHeader) {
    SetReadState(m, kStateRunning);
    RequestRead(m, m.description.CounterIndex);
    if (m.buffer.ReadState == kStateLoading) RequestRecords(m);
  }
  m.props.RunMode = kRunPause;
}

}  // namespace

void ApplyRunMode(Module& m) {
  struct Applying {
    bool& flag;
    bool saved;
    explicit Applying(bool& f) : flag(f), saved(f) { flag = true; }
    ~Applying() { flag = saved; }
  } applying(m.applyingRunMode);
  switch (m.props.RunMode) {
    case kRunStop:
      m.readTimer->SetEnabled(false);
      ShowStatus(m, "Stoped");
      if (m.buffer.ReadState >= kStateRunning) SetReadState(m, kStateHeader);
      break;
    case kRunPause:
      if (m.buffer.ReadState < kStateHeader) {
        m.props.RunMode = kRunStop;
      } else {
        SetReadState(m, kStateRunning);
        m.readTimer->SetEnabled(false);
        ShowStatus(m, "Refresh mode paused");
      }
      break;
    case kRunRefresh:
      ApplyRun(m);
      break;
    case kRunOnce:
      ApplyReadOnce(m);
      break;
    default:
      break;
  }
  if (m.props.RunMode != kRunRefresh && m.surface.activityVisible) {
    m.surface.activityVisible = false;
    m.SurfaceChanged();
  }
  m.appliedRunMode = m.props.RunMode;
}

void ResumeRefresh(Module& m) {
  if (m.applyingRunMode || m.props.RunMode != kRunRefresh || m.readTimer->Enabled()) return;
  m.readTimer->SetEnabled(true);
  ShowStatus(m, "Refresh mode running");
}

void ChangeRunMode(Module& m, int16_t runMode) {
  if (m.props.RunMode == kRunStop && runMode == kRunRefresh) ShowGridView(m);
  m.surface.status.foreColor = kColorBlack;
  m.props.RunMode = runMode;
  m.MarkChanged("RunMode");
  ApplyRunMode(m);
}

}  // namespace vantrel
