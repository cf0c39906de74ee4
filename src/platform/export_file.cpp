#include "platform/export_file.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <system_error>

namespace vantrel {
namespace {

namespace fs = std::filesystem;

bool IsLink(const std::string& path) {
  std::error_code ignored;
  return fs::is_symlink(fs::symlink_status(path, ignored));
}

// The standard library's files: a link is looked for before the file is opened.
class StandardFiles final : public ExportFiles {
 public:
  std::FILE* Open(const std::string& path, ExportOpen how) override {
    if (IsLink(path)) {
      errno = ELOOP;
      return nullptr;
    }
    switch (how) {
      case ExportOpen::KeepContents:
        return std::fopen(path.c_str(), "r+b");
      case ExportOpen::Create:
        return std::fopen(path.c_str(), "w+b");
      case ExportOpen::Truncate:
        break;
    }
    return std::fopen(path.c_str(), "wb");
  }

  std::string CreateBeside(const std::string& target, std::string& error) override {
    static constexpr char kLetters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    thread_local std::mt19937 random{std::random_device{}()};
    std::uniform_int_distribution<size_t> letter(0, sizeof kLetters - 2);
    std::string path;
    for (int attempt = 0; attempt < 100; ++attempt) {
      path = target + '.';
      for (int i = 0; i < 6; ++i)
        path += kLetters[letter(random)];
      // "x": created here or not at all, never an existing file or link opened.
      if (std::FILE* file = std::fopen(path.c_str(), "wbx")) {
        std::fclose(file);
        return path;
      }
      if (errno != EEXIST) break;
    }
    error = "Cannot create " + path + " : " + std::strerror(errno);
    return {};
  }

  bool Replace(const std::string& staged, const std::string& target, std::string& error) override {
    // The staged file was created with the usual permissions; an old file keeps its own.
    std::error_code failed;
    const fs::file_status old = fs::symlink_status(target, failed);
    failed.clear();
    if (fs::is_regular_file(old)) fs::permissions(staged, old.permissions(), failed);
    if (!failed) fs::rename(staged, target, failed);
    if (failed) {
      error = "Cannot write " + target + " : " + failed.message();
      return false;
    }
    return true;
  }
};

}  // namespace

ExportFiles& StandardExportFiles() {
  static StandardFiles files;
  return files;
}

StagedFile::StagedFile(ExportFiles& files, const std::string& target)
    : files_(files), target_(target) {
  path_ = files_.CreateBeside(target, error_);
}

StagedFile::~StagedFile() {
  std::error_code ignored;
  if (Ready() && !committed_) fs::remove(path_, ignored);
}

bool StagedFile::Commit() {
  if (!Ready()) return false;
  committed_ = files_.Replace(path_, target_, error_);
  return committed_;
}

}  // namespace vantrel
