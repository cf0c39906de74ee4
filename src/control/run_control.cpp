#include "control/run_control.h"

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
  m.graph.SetShown(false);
  m.surface.gridVisible = true;
  m.surface.chartVisible = false;
  m.grid.SetRedraw(true);
  m.SurfaceChanged();
}

namespace {

void ApplyRun(Module& m) {
  if (m.cycle.State() < kStateHeader) {
    m.props.RunMode = kRunStop;
    return;
  }
  if (m.cycle.State() == kStateHeader) {
    m.cycle.ResetWalk();
    m.cycle.RequestHeader();
  }
  if (m.cycle.State() == kStateRunning) {
    m.readTimer->SetEnabled(true);
    ShowStatus(m, "Refresh mode running");
    m.cycle.RequestCounterArea(8);
  }
  if (m.cycle.State() == kStateLoading) {
    m.cycle.RequestRecords();
    if (m.cycle.State() == kStateRunning && m.props.RunMode == kRunRefresh) {
      m.readTimer->SetEnabled(true);
    }
  }
}

void ApplyReadOnce(Module& m) {
  if (m.cycle.State() == kStateHeader) {
    m.cycle.SetState(kStateRunning);
    m.cycle.RequestCounterArea(0);
    if (m.cycle.State() == kStateLoading) m.cycle.RequestRecords();
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
      if (m.cycle.State() >= kStateRunning) m.cycle.SetState(kStateHeader);
      break;
    case kRunPause:
      if (m.cycle.State() < kStateHeader) {
        m.props.RunMode = kRunStop;
      } else {
        m.cycle.SetState(kStateRunning);
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

void OnReadTimer(Module& m) {
  if (m.gridRedrawPending) {
    m.gridRedrawPending = false;
    m.grid.SetRedraw(true);
  }
  m.cycle.OnReadTimer();
  m.surface.activityVisible = !m.surface.activityVisible;
  m.SurfaceChanged();
}

}  // namespace vantrel
