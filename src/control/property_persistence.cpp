// Saving and loading the control's properties in the host's property bag. Loading stores the
// values directly, without running the setters: nothing starts until the host calls Start.

#include <tuple>

#include "control/guard.h"
#include "control/module.h"
#include "control/resource_paths.h"
#include "vantrel/control.h"

namespace vantrel {
namespace {

// One entry per persisted property, in the order the bag is read and written.
template <typename Visitor>
void ForEachPersisted(PropertyFields& p, Visitor&& visit) {
  int32_t dataBlock = 0;  // the inlet is persisted for form compatibility; it is always 0
  visit("Enabled", p.Enabled, true);
  visit("DataBlock", dataBlock, int32_t{0});
  visit("ResourcePath", p.ResourcePath, std::string("C:\\"));
  visit("ProjectPath", p.ProjectPath, std::string());
  visit("UserFile", p.UserFile, std::string());
  visit("SymbFile", p.SymbFile, std::string());
  visit("Interval", p.Interval, int32_t{1000});
  visit("RunMode", p.RunMode, int16_t{0});
  visit("Simulation", p.Simulation, false);
  visit("DisplayMode", p.DisplayMode, int16_t{1});
  visit("GridFontName", p.GridFontName, std::string("Courier"));
  visit("GridFontSize", p.GridFontSize, std::string("10"));
  visit("DateStampCol", p.DateStampCol, false);
  visit("TimeStampCol", p.TimeStampCol, false);
  visit("PCDStatusCol", p.PCDStatusCol, false);
  visit("PCDStatus", p.PCDStatus, int32_t{0});
  visit("StartRegister", p.StartRegister, int16_t{0});
  visit("MaxRows", p.MaxRows, int32_t{500});
  visit("MaxGraph", p.MaxGraph, int32_t{20});
  visit("ExportFile", p.ExportFile, std::string());
  visit("AutoExport", p.AutoExport, false);
  visit("IndexFile", p.IndexFile, int16_t{0});
  visit("SelColumn", p.SelColumn, std::string());
  visit("ExportFormat", p.ExportFormat, int16_t{0});
  visit("HistoryFile", p.HistoryFile, std::string());
}

PropertyValue ToValue(bool v) {
  return v;
}
PropertyValue ToValue(int16_t v) {
  return int32_t{v};
}
PropertyValue ToValue(int32_t v) {
  return v;
}
PropertyValue ToValue(const std::string& v) {
  return v;
}

void FromValue(const PropertyValue& value, bool& field) {
  field = std::get<bool>(value);
}
void FromValue(const PropertyValue& value, int32_t& field) {
  field = std::get<int32_t>(value);
}
void FromValue(const PropertyValue& value, std::string& field) {
  field = std::get<std::string>(value);
}
void FromValue(const PropertyValue& value, int16_t& field) {
  const int32_t wide = std::get<int32_t>(value);
  // A 16-bit property out of range in a hand-edited bag keeps its default.
  if (wide >= INT16_MIN && wide <= INT16_MAX) field = static_cast<int16_t>(wide);
}

void AfterLoad(Module& m) {
  m.readTimer->SetInterval(m.props.Interval);
  // The resource directories follow the loaded path; this is derived state, not a setter.
  m.SearchPaths = SplitResourcePath(m.props.ResourcePath);
}

}  // namespace

void Control::InitProperties() {
  Module& m = *module_;
  Guarded(m, "InitProperties", [&] {
    m.props = PropertyFields{};
    AfterLoad(m);
  });
}

void Control::ReadProperties(const PropertyBag& bag) {
  Module& m = *module_;
  Guarded(m, "ReadProperties", [&] {
    ForEachPersisted(m.props, [&](const char* name, auto& field, const auto& defaultValue) {
      using Field = std::decay_t<decltype(field)>;
      Field loaded = defaultValue;
      FromValue(bag.ReadProperty(name, ToValue(defaultValue)), loaded);
      field = loaded;
    });
    AfterLoad(m);
  });
}

void Control::WriteProperties(PropertyBag& bag) const {
  Module& m = *module_;
  Guarded(m, "WriteProperties", [&] {
    PropertyFields copy = m.props;
    ForEachPersisted(copy, [&](const char* name, auto& field, const auto& defaultValue) {
      bag.WriteProperty(name, ToValue(field), ToValue(defaultValue));
    });
  });
}

}  // namespace vantrel
