#include "text_conversion.h"

#include <algorithm>

#include "vantrel/encoding.h"

namespace vantrel::qt {

QString ToQString(std::string_view cp1252) {
  // Table cells are converted on every paint: most are ASCII or Latin-1, where the bytes
  // are the code points already. Only 0x80..0x9F differ from Latin-1 in Windows-1252.
  const bool latin1 = std::none_of(cp1252.begin(), cp1252.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte <= 0x9F;
  });
  if (latin1) {
    return QString::fromLatin1(cp1252.data(), static_cast<qsizetype>(cp1252.size()));
  }
  const std::string utf8 = Cp1252ToUtf8(cp1252);
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string FromQString(const QString& text) {
  const QByteArray utf8 = text.toUtf8();
  return Utf8ToCp1252(std::string_view(utf8.constData(), static_cast<size_t>(utf8.size())));
}

QColor ColorFromBgr(int32_t color) {
  const auto bgr = static_cast<uint32_t>(color);
  return QColor(static_cast<int>(bgr & 0xFFu), static_cast<int>((bgr >> 8) & 0xFFu),
                static_cast<int>((bgr >> 16) & 0xFFu));
}

}  // namespace vantrel::qt
