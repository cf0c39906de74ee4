#pragma once
// Every event of the control as one JSON object per line, for programs that follow a run.

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace vantrel::cli {

class EventLog {
 public:
  // `path` "-" is standard output; empty means no log.
  explicit EventLog(const std::string& path);
  ~EventLog();
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

  bool Ok() const { return path_.empty() || file_ != nullptr; }
  // A write failed (a full disk, a closed pipe): later events are not written.
  bool WriteFailed() const { return writeFailed_; }
  // `fields` is the object's body after the event name, already JSON.
  void Write(std::string_view event, const std::string& fields);

 private:
  std::string path_;
  std::FILE* file_ = nullptr;
  bool writeFailed_ = false;
};

// A JSON string literal of a control text (Windows-1252).
std::string JsonString(std::string_view cp1252);

}  // namespace vantrel::cli
