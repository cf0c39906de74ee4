#pragma once
// How exports reach the file system. An export writes only the file the user named: a
// symbolic link in its place is refused or replaced, never followed to a file elsewhere.
//
// StandardExportFiles() needs only the standard library: it looks for a link before it opens
// or stages, so a link made between the look and the open is still followed.
// vantrel::PosixExportFiles() (the vantrel_posix library) asks the system itself not to follow
// one. A host hands the one it wants to the control (ControlServices::exportFiles) and to
// whatever else exports.

#include <cstdio>
#include <string>

namespace vantrel {

enum class ExportOpen {
  KeepContents,  // an existing file, read and written without truncation
  Create,        // a new file, read and written
  Truncate,      // written from empty, created when missing
};

class ExportFiles {
 public:
  virtual ~ExportFiles() = default;
  // Opens `path` (a native path) as fopen would, except that a symbolic link as the last
  // component fails with ELOOP. Null with errno set on failure.
  virtual std::FILE* Open(const std::string& path, ExportOpen how) = 0;
  // Creates an empty file beside `target` under a name no file had: its path, or empty with
  // `error` set.
  virtual std::string CreateBeside(const std::string& target, std::string& error) = 0;
  // Renames `staged` over `target` with the permissions of the regular file it replaces (the
  // usual ones for a new file); a link at the target is replaced, not written through. False
  // with `error` set.
  virtual bool Replace(const std::string& staged, const std::string& target,
                       std::string& error) = 0;
};

ExportFiles& StandardExportFiles();

// `files`, or the standard ones when there are none.
inline ExportFiles& ExportFilesOr(ExportFiles* files) {
  return files != nullptr ? *files : StandardExportFiles();
}

}  // namespace vantrel
