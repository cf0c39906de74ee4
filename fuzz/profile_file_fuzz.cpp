// The profile-file reader on arbitrary bytes: every read stays within its limits.
#include "description/profile_file.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  const ProfileFile file = ProfileFile::Parse(fuzz::AsText(data, size));
  for (const char* section : {"VANTREL", "DRIVER", "REGISTER_0", "REGISTER_1", ""}) {
    for (const char* key : {"Key", "Version", "Title", "TextFile", "Long", ""}) {
      fuzz::Check(file.ReadString(section, key).size() <= kMaxProfileValue,
                  "a value is at most 255 characters");
    }
    const ProfileFile::SectionLines lines = file.ReadSectionLines(section);
    const std::string joined = file.ReadSection(section);
    if (lines.characters == kSectionDoesNotFit) {
      fuzz::Check(joined.empty(), "a section that does not fit reads empty");
    }
  }
  return 0;
}
