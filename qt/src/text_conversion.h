#pragma once
// Texts inside the control are Windows-1252 bytes; Qt holds Unicode. These convert at the
// boundary: to QString for display, back to bytes for what a user types.

#include <QColor>
#include <QString>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel::qt {

QString ToQString(std::string_view cp1252);
// Characters without a Windows-1252 byte become '?'.
std::string FromQString(const QString& text);

// Colours as the control keeps them: 0x00BBGGRR (255 is red, 65535 yellow).
QColor ColorFromBgr(int32_t color);

}  // namespace vantrel::qt
