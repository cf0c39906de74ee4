#pragma once
// The ExportFiles the export tests run with: the standard library's, or the POSIX ones where
// the tests are built again into posix_tests.

#include "vantrel/export_files.h"
#ifdef VANTREL_TEST_POSIX_EXPORT_FILES
#include "vantrel/posix_export_files.h"
#endif

namespace vantrel::testing {

inline ExportFiles& ExportFilesUnderTest() {
#ifdef VANTREL_TEST_POSIX_EXPORT_FILES
  return PosixExportFiles();
#else
  return StandardExportFiles();
#endif
}

}  // namespace vantrel::testing
