#include "vantrel/qt/settings_property_bag.h"

#include <QSettings>
#include <string>

#include "text_conversion.h"

namespace vantrel::qt {
namespace {

QString Key(std::string_view name) {
  return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

}  // namespace

PropertyValue SettingsPropertyBag::ReadProperty(std::string_view name,
                                                const PropertyValue& defaultValue) const {
  const QVariant stored = settings_.value(Key(name));
  if (!stored.isValid()) return defaultValue;
  // The memory bag holds the parsing rules (lenient numbers, True/False/-1/0): the stored
  // text is read through one.
  MemoryPropertyBag text;
  text.SetText(name, FromQString(stored.toString()));
  return text.ReadProperty(name, defaultValue);
}

void SettingsPropertyBag::WriteProperty(std::string_view name, const PropertyValue& value,
                                        const PropertyValue& defaultValue) {
  if (value == defaultValue) {
    settings_.remove(Key(name));
    return;
  }
  QString text;
  if (const bool* b = std::get_if<bool>(&value)) {
    text = *b ? QStringLiteral("True") : QStringLiteral("False");
  } else if (const int32_t* i = std::get_if<int32_t>(&value)) {
    text = QString::number(*i);
  } else {
    text = ToQString(std::get<std::string>(value));
  }
  settings_.setValue(Key(name), text);
}

}  // namespace vantrel::qt
