# What `cmake --install` (and the Debian package) holds: the libraries a host links with
# their headers and CMake package, the programs, their manual pages, the examples and the
# documents. Each library that needs more than the standard library has an export file of
# its own, so that find_package(Vantrel) loads it only when its dependencies are there.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VANTREL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Vantrel)

# The core and the virtual controller need nothing beyond the standard library.
set_target_properties(vantrel_hosts PROPERTIES EXPORT_NAME hosts)
install(TARGETS vantrel vantrel_hosts EXPORT VantrelTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/vantrel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT VantrelTargets NAMESPACE Vantrel:: DESTINATION ${VANTREL_CMAKE_DIR})

# The optional libraries, each as Vantrel::<part> in Vantrel<Part>Targets.cmake. The list of
# parts built goes into the package configuration.
set(VANTREL_INSTALLED_PARTS)
function(vantrel_install_part part target export_file)
  if(NOT TARGET ${target})
    return()
  endif()
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${part})
  install(TARGETS ${target} EXPORT ${export_file}
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT ${export_file} NAMESPACE Vantrel:: DESTINATION ${VANTREL_CMAKE_DIR})
  set(VANTREL_INSTALLED_PARTS ${VANTREL_INSTALLED_PARTS} ${part} PARENT_SCOPE)
endfunction()
# The POSIX part comes first: the Modbus server runs on its event loop.
vantrel_install_part(posix vantrel_posix VantrelPosixTargets)
vantrel_install_part(xlsx vantrel_xlsx VantrelXlsxTargets)
vantrel_install_part(history vantrel_history VantrelHistoryTargets)
vantrel_install_part(postgres vantrel_postgres VantrelPostgresTargets)
vantrel_install_part(modbus vantrel_modbus VantrelModbusTargets)
vantrel_install_part(qt vantrel_qt VantrelQtTargets)
if(TARGET vantrel_qt)
  install(DIRECTORY qt/include/vantrel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

set(VANTREL_EXAMPLES_INSTALL_DIR ${CMAKE_INSTALL_DATAROOTDIR}/vantrel/examples)
configure_package_config_file(cmake/VantrelConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VantrelConfig.cmake
  INSTALL_DESTINATION ${VANTREL_CMAKE_DIR}
  PATH_VARS VANTREL_EXAMPLES_INSTALL_DIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VantrelConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VantrelConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/VantrelConfigVersion.cmake
        DESTINATION ${VANTREL_CMAKE_DIR})

# The programs. They find the examples at ../share/vantrel/examples beside themselves.
foreach(program vantrel-cli vantrel-viewer)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()
# Build directories of the example projects, if someone built them in place, stay out.
install(DIRECTORY examples/ DESTINATION ${VANTREL_EXAMPLES_INSTALL_DIR}
        REGEX "/build[^/]*$" EXCLUDE)
install(FILES README.md LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/vantrel)

# The manual pages, made from the programs' own --help.
add_subdirectory(packaging)
