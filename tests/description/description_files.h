#pragma once
// A fresh directory per test for description files, with TMPDIR pointed at the directory
// "tmp" inside it, so that a test can watch every file a reader writes, temporary ones too.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "description/cipher.h"
#include "support/temp_dir.h"

namespace vantrel::testing {

class DescriptionFiles {
 public:
  DescriptionFiles() {
    std::filesystem::create_directory(dir_.Path() / "tmp");
    if (const char* old = std::getenv("TMPDIR")) oldTemp_ = old;
    ::setenv("TMPDIR", (dir_.Path() / "tmp").c_str(), 1);
  }
  ~DescriptionFiles() {
    if (oldTemp_) {
      ::setenv("TMPDIR", oldTemp_->c_str(), 1);
    } else {
      ::unsetenv("TMPDIR");
    }
  }
  DescriptionFiles(const DescriptionFiles&) = delete;
  DescriptionFiles& operator=(const DescriptionFiles&) = delete;

  std::string Path(const std::string& name) const { return dir_.File(name); }
  const std::filesystem::path& Root() const { return dir_.Path(); }

  std::string Write(const std::string& name, const std::string& bytes) const {
    const std::string path = Path(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  // The plain description enciphered, as descriptions are distributed.
  std::string WriteEnciphered(const std::string& name, const std::string& plain) const {
    return Write(name, EncipherText(plain));
  }

 private:
  TempDir dir_;
  std::optional<std::string> oldTemp_;
};

// The text with the first `from` replaced by `to`.
inline std::string Replace(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The examples shipped with the sources (VANTREL_EXAMPLES when run through ctest).
inline std::string ExamplesDirectory() {
  if (const char* examples = std::getenv("VANTREL_EXAMPLES")) return examples;
  return std::string(VANTREL_SOURCE_DIR) + "/examples";
}

}  // namespace vantrel::testing
