#include "description/user_buffer.h"

#include <algorithm>
#include <vector>

#include "description/field_types.h"
#include "description/profile_file.h"
#include "platform/numbers.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/text_file.h"

namespace vantrel {
namespace {

// A column line; one that cannot be read leaves its column undefined.
void ParseUserColumn(TraceDescription& d, int number, std::string_view line) {
  const std::vector<std::string_view> f = SplitAt(line, ',');
  if (f.size() < 8 || number < 0 || number > 127) return;
  const int16_t type = FieldTypeOfWord(f[1]);
  if (type == 0) return;
  try {
    ColumnDef column = d.Columns[static_cast<size_t>(number)];
    column.RegisterIndex = RoundToInt16(Val(f[0]));
    column.FieldType = type;
    column.Position = RoundToInt16(Val(f[2]));
    column.Width = RoundToInt32(Val(f[4]));
    column.Caption = std::string(f[5]);
    column.DisplayCode = f[6].empty() ? std::string() : std::string(f[6].substr(1));
    column.Defined = -1;
    d.Columns[static_cast<size_t>(number)] = std::move(column);
    d.ColumnCount = std::max(d.ColumnCount, static_cast<int16_t>(number));
  } catch (const RuntimeError&) {
  }
}

}  // namespace

bool HasUserBufferExtension(std::string_view userFile) {
  // The 1-based position of ".vtlr" (0 when absent) must not lie before the fifth-last
  // character; so a name of up to 4 characters passes without it.
  const size_t at = IFind(userFile, ".vtlr");
  const auto position = at == std::string_view::npos ? 0 : static_cast<int64_t>(at) + 1;
  return position >= static_cast<int64_t>(userFile.size()) - 4;
}

bool LoadUserBuffer(TraceDescription& d, std::string_view userFile, std::string_view headerKey,
                    bool simulation, std::optional<UserBufferSimulation>& simulationOut,
                    std::string& errMsg) {
  simulationOut.reset();
  try {
    if (IsNonRegularFile(userFile)) {
      errMsg = "Not a regular file :\n" + std::string(userFile);
      return false;
    }
    // Like every profile read, a missing file reads as empty and so defines no user buffer.
    const ProfileFile profile = ProfileFile::Load(userFile);
    if (Val(profile.ReadString("VANTREL", "UserBuffer")) == 0) {
      errMsg = "No user buffer defined in the source file :\n" + std::string(userFile);
      return false;
    }
    d.Title = profile.ReadString("USER_BUFFER", "Title");
    if (profile.ReadString("USER_BUFFER", "HeaderKey") != headerKey) {
      errMsg = "Invalid header key in the source file :\n" + std::string(userFile);
      return false;
    }
    if (Val(profile.ReadString("USER_BUFFER", "HeaderType")) != 1) {
      errMsg = "Invalid header type in the source file :\n" + std::string(userFile);
      return false;
    }
    d.RecordLength = RoundToInt16(Val(profile.ReadString("USER_BUFFER", "RecordLenght")));
    const int16_t lines = RoundToInt16(Val(profile.ReadString("USER_BUFFER", "Column")));
    d.DefaultColumnWidth = 1000;
    if (simulation) {
      simulationOut = UserBufferSimulation{
          RoundToInt32(Val(profile.ReadString("USER_BUFFER", "RecordInterval")) * 100),
          RoundToInt32(Val(profile.ReadString("USER_BUFFER", "RecordNumber")))};
      // Without a period the simulation would never write a record: the run would wait for
      // rows that never come.
      if (simulationOut->intervalMs < 1) {
        errMsg = "Invalid record interval in the source file :\n" + std::string(userFile) +
                 "\nRecordInterval must be above 0";
        simulationOut.reset();
        return false;
      }
      // The simulated ring lives in memory: no larger than the largest buffer a controller
      // can announce, so that a mistyped number cannot take the machine's memory.
      const int64_t registers =
          int64_t{simulationOut->recordCount} * std::max<int16_t>(d.RecordLength, 1);
      if (registers > kLargestSimulatedRing) {
        errMsg = "Simulated ring too large in the source file :\n" + std::string(userFile) +
                 "\nRecordNumber " + std::to_string(simulationOut->recordCount) +
                 " x RecordLenght " + std::to_string(d.RecordLength) + " is above " +
                 std::to_string(kLargestSimulatedRing) + " registers";
        simulationOut.reset();
        return false;
      }
    }
    d.ColumnCount = 0;
    for (ColumnDef& column : d.Columns) {
      column.Defined = 0;
      column.Marked = 0;
    }
    for (int n = 1; n <= lines; ++n) {
      ParseUserColumn(d, n, profile.ReadString("USER_BUFFER", "Column" + std::to_string(n)));
    }
  } catch (const RuntimeError& e) {
    errMsg = e.Description();
    return false;
  }
  if (d.ColumnCount >= 1) return true;
  errMsg = "No valid section founded.";
  return false;
}

}  // namespace vantrel
