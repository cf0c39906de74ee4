#pragma once
// A control's property bag kept in QSettings, under the settings' current group. Values are
// stored as text (Booleans as "True"/"False") and read back as leniently as the file bag
// reads them; a value equal to its default is removed instead of stored. Texts are kept in
// UTF-8 in the settings and handed to the control as Windows-1252.

#include "vantrel/property_bag.h"

class QSettings;

namespace vantrel::qt {

class SettingsPropertyBag final : public PropertyBag {
 public:
  explicit SettingsPropertyBag(QSettings& settings) : settings_(settings) {}

  PropertyValue ReadProperty(std::string_view name,
                             const PropertyValue& defaultValue) const override;
  void WriteProperty(std::string_view name, const PropertyValue& value,
                     const PropertyValue& defaultValue) override;

 private:
  QSettings& settings_;
};

}  // namespace vantrel::qt
