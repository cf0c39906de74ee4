#include "output/export_naming.h"

#include <cstdio>

#include "platform/paths.h"

namespace vantrel {
namespace {

size_t LastSeparator(std::string_view path) {
  for (size_t i = path.size(); i > 0; --i) {
    if (IsSeparator(path[i - 1])) return i - 1;
  }
  return std::string_view::npos;
}

// The position of the extension's dot, or npos when the last dot is not in the file name.
size_t ExtensionDot(std::string_view path) {
  const size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return dot;
  const size_t separator = LastSeparator(path);
  if (separator != std::string_view::npos && dot < separator) return std::string_view::npos;
  return dot;
}

}  // namespace

std::string WithDefaultExportName(std::string exportFile, std::string_view defaultName) {
  if (ExtensionDot(exportFile) == std::string::npos) exportFile += defaultName;
  return exportFile;
}

std::string ExportTimeStamp(const DateTime& now) {
  char text[16];
  std::snprintf(text, sizeof text, "_%02d%02d%02d%02d%02d%02d", now.year % 100, now.month, now.day,
                now.hour, now.minute, now.second);
  return text;
}

std::string ExportTargetName(std::string_view exportFile, int16_t indexFile, const DateTime& now,
                             int32_t exportIndex) {
  const size_t dot = ExtensionDot(exportFile);
  const std::string_view stem = exportFile.substr(0, dot);
  const std::string_view extension =
      dot == std::string_view::npos ? std::string_view() : exportFile.substr(dot);
  switch (indexFile) {
    case 0:
      return std::string(exportFile);
    case 1:
      return std::string(stem) + ExportTimeStamp(now) + std::string(extension);
    case 2:
      return std::string(stem) + "_" + std::to_string(exportIndex) + std::string(extension);
    default:
      return {};
  }
}

}  // namespace vantrel
