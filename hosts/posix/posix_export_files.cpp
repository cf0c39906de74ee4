#include "vantrel/posix_export_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace vantrel {
namespace {

// The process's file creation mask, read without changing it (umask() would, for a moment,
// for every thread).
mode_t CreationMask() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("Umask:", 0) == 0)
      return static_cast<mode_t>(std::strtoul(line.c_str() + 6, nullptr, 8));
  }
  return 022;
}

class PosixFiles final : public ExportFiles {
 public:
  std::FILE* Open(const std::string& path, ExportOpen how) override {
    int flags = O_NOFOLLOW | O_CLOEXEC;
    const char* mode = "r+b";
    switch (how) {
      case ExportOpen::KeepContents:
        flags |= O_RDWR;
        break;
      case ExportOpen::Create:
        flags |= O_RDWR | O_CREAT | O_TRUNC;
        mode = "w+b";
        break;
      case ExportOpen::Truncate:
        flags |= O_WRONLY | O_CREAT | O_TRUNC;
        mode = "wb";
        break;
    }
    const int fd = ::open(path.c_str(), flags, 0666);
    if (fd < 0) return nullptr;
    std::FILE* file = ::fdopen(fd, mode);
    if (file == nullptr) {
      const int error = errno;
      ::close(fd);
      errno = error;
    }
    return file;
  }

  std::string CreateBeside(const std::string& target, std::string& error) override {
    std::string pattern = target + ".XXXXXX";
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
      error = "Cannot create " + pattern + " : " + std::strerror(errno);
      return {};
    }
    ::close(fd);
    return pattern;
  }

  bool Replace(const std::string& staged, const std::string& target, std::string& error) override {
    // mkstemp makes the file private; the export gets the permissions of the file it replaces.
    struct stat old {};
    const mode_t mode = ::lstat(target.c_str(), &old) == 0 && S_ISREG(old.st_mode)
                            ? (old.st_mode & 07777)
                            : (0666 & ~CreationMask());
    if (::chmod(staged.c_str(), mode) != 0 || ::rename(staged.c_str(), target.c_str()) != 0) {
      error = "Cannot write " + target + " : " + std::strerror(errno);
      return false;
    }
    return true;
  }
};

}  // namespace

ExportFiles& PosixExportFiles() {
  static PosixFiles files;
  return files;
}

}  // namespace vantrel
