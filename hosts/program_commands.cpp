#include "vantrel/hosts/program_commands.h"

#include <charconv>

namespace vantrel::hosts {
namespace {

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool Number(std::string_view text, int64_t& value) {
  text = Trim(text);
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && ec == std::errc() && end == text.data() + text.size();
}

}  // namespace

CommandReply RunProgramCommand(TraceProgram& program, std::string_view line) {
  line = Trim(line);
  const size_t blank = line.find(' ');
  const std::string_view verb = line.substr(0, blank);
  const std::string_view argument =
      blank == std::string_view::npos ? std::string_view() : Trim(line.substr(blank + 1));
  int64_t n = 0;
  if (verb == "burst") {
    if (!Number(argument, n) || n < 1 || n > 1000000) {
      return {false, "burst takes a number of records from 1 to 1000000"};
    }
    program.WriteRecords(n);
    return {true, "wrote " + std::to_string(n) + " records, counter " +
                      std::to_string(program.Counter())};
  }
  if (verb == "restart" && argument.empty()) {
    program.RestartCounter();
    return {true, "counter restarted"};
  }
  if (verb == "pause" && argument.empty()) {
    program.SetPaused(true);
    return {true, "paused"};
  }
  if (verb == "resume" && argument.empty()) {
    program.SetPaused(false);
    return {true, "resumed"};
  }
  if (verb == "command") {
    if (!Number(argument, n) || n < INT32_MIN || n > INT32_MAX) {
      return {false, "command takes the command word's value"};
    }
    program.SetCommand(static_cast<int32_t>(n));
    return {true, "command word " + std::to_string(n)};
  }
  return {false, "unknown command '" + std::string(line) +
                     "' (burst N, restart, pause, resume, command N)"};
}

}  // namespace vantrel::hosts
