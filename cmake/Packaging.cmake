# The Debian package (`cpack -G DEB` in a build directory): one package `vantrel` with what
# `cmake --install` installs under /usr. Its Depends are what the programs need to run,
# computed by dpkg-shlibdeps from the binaries; building a host against the CMake package
# needs the compiler and the -dev packages of the libraries one links, which it suggests.
set(VANTREL_PACKAGE_MAINTAINER "Vantrel maintainers <maintainers@vantrel.invalid>"
    CACHE STRING "Maintainer field of the Debian package")

# Every Debian package carries its copyright file and its changelog in its doc directory.
install(FILES ${PROJECT_SOURCE_DIR}/packaging/debian/copyright
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/vantrel)
find_program(GZIP_EXECUTABLE gzip REQUIRED)
configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/changelog.in
               ${PROJECT_BINARY_DIR}/packaging/debian/changelog @ONLY)
add_custom_command(
  OUTPUT ${PROJECT_BINARY_DIR}/packaging/debian/changelog.gz
  COMMAND ${GZIP_EXECUTABLE} -9nkf ${PROJECT_BINARY_DIR}/packaging/debian/changelog
  DEPENDS ${PROJECT_BINARY_DIR}/packaging/debian/changelog
  VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS ${PROJECT_BINARY_DIR}/packaging/debian/changelog.gz)
install(FILES ${PROJECT_BINARY_DIR}/packaging/debian/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/vantrel)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantrel)
set(CPACK_PACKAGE_VENDOR Vantrel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${VANTREL_PACKAGE_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "trace viewer for industrial controllers")
# Debian wants the long description wrapped; CPack keeps these line breaks.
set(CPACK_PACKAGE_DESCRIPTION [=[
Vantrel fetches the trace buffer that a controller program keeps in its
registers, decodes every record into typed columns by a description file,
shows the records in a table, draws chosen columns as a graph and exports
the table to a spreadsheet.

This package holds the command line vantrel, the Qt 6 viewer
vantrel-viewer, their manual pages, the example files, and the static
libraries with their headers and CMake package (find_package(Vantrel)) for
building hosts.]=])
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries are static: linking a host against them needs the -dev packages of what
# each links (Vantrel::modbus libmodbus, Vantrel::xlsx libxlsxwriter, Vantrel::history
# SQLite, Vantrel::postgres libpq, Vantrel::qt Qt 6 Widgets and Charts) and pkg-config to
# find the first two.
# libxlsxwriter's pkg-config file links zlib, which its -dev package does not bring.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
    "cmake (>= 3.25), g++ (>= 4:12), make, pkg-config, libmodbus-dev, libxlsxwriter-dev, \
zlib1g-dev, libsqlite3-dev, libpq-dev, qt6-base-dev, qt6-charts-dev, libqt6opengl6-dev")

# Only the binary package is made here; source archives come from the repository.
set(CPACK_SOURCE_GENERATOR "")
include(CPack)
