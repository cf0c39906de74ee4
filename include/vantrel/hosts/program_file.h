#pragma once
// The virtual controller's trace program read from an INI file: the buffer in [Program],
// one key per record register in [Registers]. Example (examples/pumps_controller.ini):
//
//   [Program]
//   Key=PMP1
//   Version=3
//   RingRecords=50
//   RecordInterval=100
//   [Registers]
//   0=fields 0:1 sawtooth 2 | 16:16 sine 500 1500 40
//   1=timestamp
//   2=text LOT7
//
// Generators: counter; sawtooth STEPS [FROM]; sine AMPLITUDE OFFSET PERIOD; random BITS;
// timestamp; text ABCD (quotes keep blanks: text "A B"); constant VALUE; and fields, a list of
// SHIFT:WIDTH GENERATOR parts separated by "|".

#include <optional>
#include <string>
#include <string_view>

#include "vantrel/hosts/trace_program.h"

namespace vantrel::hosts {

struct ProgramFile {
  TraceProgramConfig program;
  int32_t recordIntervalMs = 100;  // how often the program writes a record
};

// The program described by `text`; nullopt with `error` ("line N: ...") when it is not valid.
std::optional<ProgramFile> ParseProgramFile(std::string_view text, std::string& error);
// Reads and parses the file at `path`.
std::optional<ProgramFile> ReadProgramFile(const std::string& path, std::string& error);

// One generator as the [Registers] section writes it, e.g. "sine 300 0 25".
std::optional<RegisterGenerator> ParseGenerator(std::string_view text, std::string& error);

}  // namespace vantrel::hosts
