// The property-bag file on arbitrary bytes: what it reads, it saves and reads back the same.
#include "fuzz_support.h"
#include "vantrel/property_bag.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantrel;
  const std::string path = fuzz::WriteInput("control.properties", fuzz::AsText(data, size));
  FilePropertyBag bag;
  if (!bag.Load(path)) return 0;
  const std::string copy = (fuzz::Scratch() / "copy.properties").string();
  fuzz::Check(bag.Save(copy), "a read bag can be saved");
  FilePropertyBag again;
  fuzz::Check(again.Load(copy), "a saved bag can be read");
  fuzz::Check(again.Problems().empty(), "a saved bag reads without problems");
  fuzz::Check(again.Entries() == bag.Entries(), "a saved bag reads back the same entries");
  return 0;
}
