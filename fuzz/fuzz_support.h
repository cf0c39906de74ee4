#pragma once
// What the fuzz targets share: a private directory for the files they write (the readers
// under test take paths), and a check that stops the run with a message when an invariant
// does not hold.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace vantrel::fuzz {

// The process's own scratch directory, also made the temporary directory so that any file a
// reader writes, temporary ones too, lands where the targets can see it.
inline const std::filesystem::path& Scratch() {
  static const std::filesystem::path dir = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantrel-fuzz-XXXXXX");
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    ::setenv("TMPDIR", pattern.c_str(), 1);
    return std::filesystem::path(pattern);
  }();
  return dir;
}

// Writes `bytes` to `name` in the scratch directory and returns the path.
inline std::string WriteInput(std::string_view name, std::string_view bytes) {
  const std::filesystem::path path = Scratch() / name;
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return path.string();
}

inline void Check(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
  }
}

inline std::string_view AsText(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Files in the scratch directory other than the ones the target wrote itself.
inline int StrayFiles(std::initializer_list<std::string_view> own) {
  int stray = 0;
  for (const auto& entry : std::filesystem::directory_iterator(Scratch())) {
    const std::string name = entry.path().filename().string();
    bool mine = false;
    for (std::string_view o : own)
      mine = mine || name == o;
    if (!mine) ++stray;
  }
  return stray;
}

}  // namespace vantrel::fuzz
