#pragma once
// The export files of POSIX systems (the vantrel_posix library): opened with O_NOFOLLOW and
// staged with mkstemp, so that no link can slip in between a check and an open. A host hands
// it to its controls: services.exportFiles = &vantrel::PosixExportFiles().

#include "vantrel/export_files.h"

namespace vantrel {

ExportFiles& PosixExportFiles();

}  // namespace vantrel
