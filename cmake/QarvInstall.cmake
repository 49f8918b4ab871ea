# Installation: the libraries with their headers, the CMake package, the pkg-config file.  Every rule has its
# component: runtime, development, or command (in its own folder).
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
# Installs libraries with their headers: qarv_install_libraries(TARGETS name... [FILE_SETS more...]).
function(qarv_install_libraries)
  cmake_parse_arguments(ARG "" "" "TARGETS;FILE_SETS" ${ARGN})
  set(file_sets)
  foreach(file_set IN ITEMS HEADERS ${ARG_FILE_SETS})
    list(APPEND file_sets FILE_SET ${file_set} COMPONENT development)
  endforeach()
  install(TARGETS ${ARG_TARGETS} EXPORT ${PROJECT_NAME}
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    ${file_sets})
endfunction()
qarv_install_libraries(TARGETS qarv_common qarv_analysis)
qarv_install_libraries(TARGETS qarv_vib_ctrl_wave_def FILE_SETS generated)
# A static one would need all the libraries that the shared one holds.
if(QARV_BUILD_CAPI AND QARV_SHARED)
  qarv_install_libraries(TARGETS qarv_wave_c)
endif()
install(EXPORT ${PROJECT_NAME} NAMESPACE qarv:: FILE ${PROJECT_NAME}Targets.cmake
  DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(cmake/${PROJECT_NAME}Config.cmake.in
  ${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake
  ${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The way up from the pkg-config files to the prefix.
file(RELATIVE_PATH QARV_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/${PROJECT_NAME}.pc.in ${PROJECT_BINARY_DIR}/${PROJECT_NAME}.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${PROJECT_NAME}.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
if(QARV_BUILD_CAPI AND QARV_SHARED)
  configure_file(cmake/qarv_wave_c.pc.in ${PROJECT_BINARY_DIR}/qarv_wave_c.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/qarv_wave_c.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endif()
