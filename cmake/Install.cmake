include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS vantrel EXPORT VantrelTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/vantrel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT VantrelTargets NAMESPACE Vantrel::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vantrel)

configure_package_config_file(cmake/VantrelConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VantrelConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vantrel)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VantrelConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VantrelConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/VantrelConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vantrel)
