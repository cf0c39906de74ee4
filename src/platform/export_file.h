#pragma once
// The files an export writes, through the host's ExportFiles: a symbolic link in the
// target's place is refused or replaced, never followed to a file somewhere else.

#include <cstdio>
#include <string>

#include "vantrel/export_files.h"

namespace vantrel {

// Opens `path` (a native path) as fopen would, except that a symbolic link as the last
// component fails with ELOOP. Null with errno set on failure.
inline std::FILE* OpenExportFile(ExportFiles& files, const std::string& path, ExportOpen how) {
  return files.Open(path, how);
}

// A file written under a temporary name beside its target and renamed over the target when
// complete, for writers that open files themselves: a link at the target is replaced by the
// file rather than written through, and a half-written file never carries the target's name.
class StagedFile {
 public:
  StagedFile(ExportFiles& files, const std::string& target);
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  // False when the staging file could not be created; Error() says why.
  bool Ready() const { return !path_.empty(); }
  const std::string& Path() const { return path_; }
  const std::string& Error() const { return error_; }
  // Puts the written file in place with the target's permissions (or the usual ones for a
  // new file). False with Error() set when it could not.
  bool Commit();

 private:
  ExportFiles& files_;
  std::string target_;
  std::string path_;
  std::string error_;
  bool committed_ = false;
};

}  // namespace vantrel
