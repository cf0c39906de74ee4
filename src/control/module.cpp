#include "control/module.h"

#include "control/clear.h"
#include "control/run_control.h"
#include "control/trace_loading.h"

namespace vantrel {

Control::Module::Module(ControlEvents& e, ControlServices s)
    : events(e),
      services(std::move(s)),
      cycle(*this, {props.Simulation, props.StartRegister}, description),
      decoder({description, symbols, valueTexts, services.clock, decimalSeparator}),
      rows(grid, decimalSeparator, [this](std::string_view line) { events.OutputLine(line); }) {
  readTimer = services.timers.CreateTimer();
  simulTimer = services.timers.CreateTimer();
  readTimer->SetInterval(props.Interval);
}

void Control::Module::MarkChanged(std::string_view property) {
  if (services.container != nullptr) services.container->PropertyChanged(property);
}

void Control::Module::SurfaceChanged() {
  for (SurfaceObserver* observer : surfaceObservers)
    observer->SurfaceChanged();
}

void Control::Module::RaiseError(int16_t errType, std::string_view message) {
  events.ModulError(errType, message);
}

void Control::Module::ReadRegisters(int16_t first, int16_t count) {
  events.ReadPCDReg(first, count);
}

void Control::Module::ReadDataBlock(int16_t block, int16_t offset, int16_t count) {
  events.ReadPCDDB(block, offset, count);
}

void Control::Module::ReadStateChanged(int16_t state, std::string_view statusText) {
  ShowStatus(*this, statusText);
  events.Status(state);
}

void Control::Module::HeaderArrived() {
  surface.infoButton.enabled = false;
  SurfaceChanged();
}

bool Control::Module::LoadDescription(std::string& errMsg) {
  return LoadTraceDescription(*this, errMsg);
}

void Control::Module::StopOnFailure(int16_t errType, std::string_view message) {
  const std::string text(message);
  props.RunMode = kRunStop;
  ApplyRunMode(*this);
  RaiseError(errType, text);
}

void Control::Module::ResumeRefresh() {
  vantrel::ResumeRefresh(*this);
}

void InitializeControl(Module& m) {
  const FontState ambient =
      m.services.container != nullptr ? m.services.container->AmbientFont() : FontState{};
  m.surface.titleFont = ambient;
  m.surface.title = {"No Buffer Selected", kColorBlack};
  m.SurfaceChanged();
  ClearTable(m);
  m.cycle.ResetBuffer();
  m.cycle.SetState(kStateDisabled);
  m.surface.activityVisible = false;
  m.simulTimer->SetEnabled(false);
  m.SurfaceChanged();
}

}  // namespace vantrel
