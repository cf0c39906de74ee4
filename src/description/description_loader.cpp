#include "description/description_loader.h"

#include <optional>

#include "description/cipher.h"
#include "description/column_parser.h"
#include "description/directory_search.h"
#include "description/profile_file.h"
#include "platform/numbers.h"
#include "platform/runtime_error.h"

namespace vantrel {
namespace {

bool Fail(std::string& errMsg, std::string message) {
  errMsg = std::move(message);
  return false;
}

bool LoadFromText(TraceDescription& d, int16_t headerLengthInForce,
                  const DescriptionSources& sources, const ProfileFile& file, std::string& textFile,
                  std::string& errMsg) {
  d.HeaderApp = file.ReadString("VANTREL", "App");
  d.HeaderKeyText = file.ReadString("VANTREL", "Key");
  d.DescVersion = RoundToInt32(Val(file.ReadString("VANTREL", "Version")));
  if (!(Val(file.ReadString("VANTREL", "HeaderLenght")) > 0)) {
    return Fail(errMsg, "Invalid Header Lenght : " + std::to_string(headerLengthInForce));
  }
  const double counterIndex = Val(file.ReadString("VANTREL", "CounterIndex"));
  if (!(counterIndex > 0)) {
    return Fail(errMsg, "Invalid Counter Index : " + std::to_string(d.CounterIndex));
  }
  d.CounterIndex = RoundToInt16(counterIndex);
  const double recordLength = Val(file.ReadString("VANTREL", "RecordLenght"));
  if (!(recordLength > 0)) {
    return Fail(errMsg, "Invalid Record Lenght : " + std::to_string(d.RecordLength));
  }
  d.RecordLength = RoundToInt16(recordLength);
  d.StringIndex = file.ReadString("VANTREL", "StringIndex");
  d.Title = file.ReadString("DRIVER", "Title");
  d.InfoText = file.ReadSection("INFO");
  d.DefaultColumnWidth = StrictToInt16(file.ReadString("DRIVER", "ColumnWidth"));
  if (d.DefaultColumnWidth < 10) d.DefaultColumnWidth = 1000;
  d.ColumnCount = 0;
  for (ColumnDef& column : d.Columns) {
    column.Defined = 0;
    column.Marked = 0;
  }
  for (int n = 0; n < d.RecordLength; ++n) {
    if (!ParseRegisterSection(d, file, "REGISTER_", n, sources.readSymbolFile, errMsg)) {
      return false;
    }
  }
  textFile = file.ReadString("DRIVER", "TextFile");
  return true;
}

}  // namespace

bool LoadDescription(TraceDescription& d, int16_t headerLengthInForce,
                     const DescriptionSources& sources, std::string& errMsg) {
  d.SymbolFileLoaded = false;
  std::string textFile;
  try {
    {
      // The description is deciphered and parsed in memory: no plain copy of it is written.
      std::string cipherError;
      const std::optional<std::string> plain = DecryptDescription(d.DescriptionFile, cipherError);
      if (!plain) {
        return Fail(errMsg,
                    "Error in description file :\n" + d.DescriptionFile + "\r\r" + cipherError);
      }
      const ProfileFile file = ProfileFile::Parse(*plain);
      if (!LoadFromText(d, headerLengthInForce, sources, file, textFile, errMsg)) return false;
    }
    if (!textFile.empty()) LoadValueTextFiles(textFile, sources);
  } catch (const RuntimeError& e) {
    return Fail(errMsg, e.Description());
  }
  if (d.ColumnCount >= 1) return true;
  return Fail(errMsg, "No valid section founded.");
}

void LoadValueTextFiles(const std::string& textFile, const DescriptionSources& sources) {
  if (!sources.readValueTextFile) return;
  try {
    for (const std::string& directory : sources.textFileDirectories) {
      if (directory.empty()) continue;  // never the process's current directory by accident
      const std::string dir = AddTrailingSeparator(directory);
      if (textFile.find('*') != std::string::npos) {
        SearchTextFiles(dir, textFile, sources.readValueTextFile);
      } else {
        sources.readValueTextFile(dir + textFile);
      }
    }
  } catch (const RuntimeError& e) {
    if (sources.prompts != nullptr) {
      sources.prompts->ShowMessage("SearchTextFile Function Error : " + e.Description(), "Vantrel",
                                   MessageIcon::None, MessageButtons::Ok);
    }
  }
}

}  // namespace vantrel
