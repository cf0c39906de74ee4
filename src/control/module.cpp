#include "control/module.h"

#include "acquisition/reading_cycle.h"
#include "control/clear.h"

namespace vantrel {

Control::Module::Module(ControlEvents& e, ControlServices s)
    : events(e),
      services(std::move(s)),
      decoder({description, symbols, valueTexts, services.clock, decimalSeparator}) {
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

void ResetBufferState(Module& m) {
  m.description.DescriptionFile.clear();
  m.buffer.FormatKey.clear();
  m.buffer.HeaderKey.clear();
  m.description.CounterIndex = 0;
  m.buffer.HeaderVersion = 0;
  m.buffer.BufferLen = 0;
  m.buffer.RecordReadOffset = 0;
  m.description.RecordLength = 0;
  ResetWalkCounters(m);  // also the record number and the records to read
  m.walk.FirstRead = true;
}

void InitializeControl(Module& m) {
  const FontState ambient =
      m.services.container != nullptr ? m.services.container->AmbientFont() : FontState{};
  m.surface.titleFont = ambient;
  m.surface.title = {"No Buffer Selected", kColorBlack};
  m.SurfaceChanged();
  ClearTable(m);
  ResetBufferState(m);
  SetReadState(m, kStateDisabled);
  m.surface.activityVisible = false;
  m.simulTimer->SetEnabled(false);
  m.SurfaceChanged();
}

}  // namespace vantrel
