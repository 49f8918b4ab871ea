# Installation: the libraries with their headers, the CMake package, the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
install(TARGETS qarv_common qarv_analysis EXPORT ${PROJECT_NAME} FILE_SET HEADERS)
install(TARGETS qarv_vib_ctrl_wave_def EXPORT ${PROJECT_NAME}
  FILE_SET HEADERS
  FILE_SET generated)
# A static one would need all the libraries that the shared one holds.
if(QARV_BUILD_CAPI AND QARV_SHARED)
  install(TARGETS qarv_wave_c EXPORT ${PROJECT_NAME} FILE_SET HEADERS)
endif()
install(EXPORT ${PROJECT_NAME} NAMESPACE qarv:: FILE ${PROJECT_NAME}Targets.cmake
  DESTINATION ${package_dir})

configure_package_config_file(cmake/${PROJECT_NAME}Config.cmake.in
  ${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake
  ${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake
  DESTINATION ${package_dir})

# The way up from the pkg-config files to the prefix.
file(RELATIVE_PATH QARV_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/${PROJECT_NAME}.pc.in ${PROJECT_BINARY_DIR}/${PROJECT_NAME}.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${PROJECT_NAME}.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(QARV_BUILD_CAPI AND QARV_SHARED)
  configure_file(cmake/qarv_wave_c.pc.in ${PROJECT_BINARY_DIR}/qarv_wave_c.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/qarv_wave_c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
