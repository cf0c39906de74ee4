#include "event_log.h"

#include "vantrel/encoding.h"

namespace vantrel::cli {

EventLog::EventLog(const std::string& path) : path_(path) {
  if (path_.empty()) return;
  file_ = path_ == "-" ? stdout : std::fopen(path_.c_str(), "w");
}

EventLog::~EventLog() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

void EventLog::Write(std::string_view event, const std::string& fields) {
  if (file_ == nullptr || writeFailed_) return;
  std::fprintf(file_, "{\"event\":\"%.*s\"%s%s}\n", static_cast<int>(event.size()), event.data(),
               fields.empty() ? "" : ",", fields.c_str());
  if (std::fflush(file_) != 0 || std::ferror(file_) != 0) writeFailed_ = true;
}

std::string JsonString(std::string_view cp1252) {
  std::string out = "\"";
  for (char c : Cp1252ToUtf8(cp1252)) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
          out += escaped;
        } else {
          out.push_back(c);
        }
    }
  }
  return out + "\"";
}

}  // namespace vantrel::cli
