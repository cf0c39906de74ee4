#include "platform/export_file.h"

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

}  // namespace

std::FILE* OpenExportFile(const std::string& path, ExportOpen how) {
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

StagedFile::StagedFile(const std::string& target) : target_(target) {
  std::string pattern = target + ".XXXXXX";
  const int fd = ::mkstemp(pattern.data());
  if (fd < 0) {
    error_ = "Cannot create " + pattern + " : " + std::strerror(errno);
    return;
  }
  ::close(fd);
  path_ = pattern;
}

StagedFile::~StagedFile() {
  if (Ready() && !committed_) ::unlink(path_.c_str());
}

bool StagedFile::Commit() {
  if (!Ready()) return false;
  // mkstemp makes the file private; the export gets the permissions of the file it replaces.
  struct stat old {};
  const mode_t mode = ::lstat(target_.c_str(), &old) == 0 && S_ISREG(old.st_mode)
                          ? (old.st_mode & 07777)
                          : (0666 & ~CreationMask());
  if (::chmod(path_.c_str(), mode) != 0 || ::rename(path_.c_str(), target_.c_str()) != 0) {
    error_ = "Cannot write " + target_ + " : " + std::strerror(errno);
    return false;
  }
  committed_ = true;
  return true;
}

}  // namespace vantrel
