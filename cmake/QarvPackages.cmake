# The Debian packages: cpack -G DEB makes one of each component of the installation.
#   runtime, development, command   always; the last with QARV_BUILD_COMMAND
#   python3                         the Python package for the system's Python, where it is built
set(packages_dir ${CMAKE_CURRENT_LIST_DIR}/packages)
set(python_dir lib/python3/dist-packages)
set(CPACK_COMPONENTS_ALL runtime development)
if(QARV_BUILD_COMMAND)
  list(APPEND CPACK_COMPONENTS_ALL command)
endif()
if(TARGET qarv_python)
  list(APPEND CPACK_COMPONENTS_ALL python3)
  # Beside the rules of a wheel, whose folder is another.
  install(TARGETS qarv_python LIBRARY DESTINATION ${python_dir}/qarv_wave
    COMPONENT python3 EXCLUDE_FROM_ALL)
  install(DIRECTORY python/qarv_wave DESTINATION ${python_dir}
    COMPONENT python3 EXCLUDE_FROM_ALL PATTERN __pycache__ EXCLUDE)
endif()

set(CPACK_PACKAGE_NAME qarv-vib-ctrl-wave-def)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # or it would come before that of each package
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Nobody by name, at a domain that nobody can have.
set(CPACK_PACKAGE_CONTACT "qarv_vib_ctrl_wave_def developers <packages@qarv-wave.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${packages_dir}/stage.cmake)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

# What a package is: qarv_package(component NAME name SECTION section SUMMARY line TEXT lines).
function(qarv_package component)
  cmake_parse_arguments(ARG "" "NAME;SECTION;SUMMARY" "TEXT" ${ARGN})
  string(TOUPPER ${component} key)
  list(JOIN ARG_TEXT "\n" text)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${ARG_NAME} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${ARG_SECTION} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${ARG_SUMMARY}\n${text}" PARENT_SCOPE)
endfunction()

set(subject
  "Test waveforms of a shock and vibration test controller: sines, beats,"
  "bursts, damped-sine and wavelet synthesis, classical shock pulses with"
  "compensation, each between the tolerance bands that judge a response."
  ".")

qarv_package(runtime NAME libqarv-vib-ctrl-wave-def${PROJECT_VERSION_MAJOR} SECTION libs
  SUMMARY "test waveforms for shock and vibration (shared libraries)"
  TEXT ${subject} "This package has what programs need that use the libraries.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${packages_dir}/triggers)

qarv_package(development NAME libqarv-vib-ctrl-wave-def-dev SECTION libdevel
  SUMMARY "test waveforms for shock and vibration (development files)"
  TEXT ${subject}
  "This package has the headers, the static libraries, what CMake and"
  "pkg-config ask for, and the examples.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)

qarv_package(command NAME qarv-wave SECTION science
  SUMMARY "test waveforms for shock and vibration (command)"
  TEXT ${subject}
  "This package has the command qarv-wave, which generates waveforms from"
  "definitions in JSON, checks and plots them, reports what a shaker has to"
  "do, calculates shock response spectra and judges measured records.")
# Plots are drawn by it; everything else works without.
set(CPACK_DEBIAN_COMMAND_PACKAGE_RECOMMENDS "gnuplot-nox | gnuplot, fonts-dejavu-core")

qarv_package(python3 NAME python3-qarv-wave SECTION python
  SUMMARY "test waveforms for shock and vibration (Python 3)"
  TEXT ${subject} "This package has the Python package qarv_wave, with NumPy arrays.")
set(CPACK_DEBIAN_PYTHON3_PACKAGE_RECOMMENDS "python3-matplotlib")
set(CPACK_DEBIAN_PYTHON3_PACKAGE_CONTROL_EXTRA
  "${packages_dir}/python3/postinst;${packages_dir}/python3/prerm")
if(TARGET qarv_python)
  # The module is for this version of Python alone.
  math(EXPR next "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON3_PACKAGE_DEPENDS
    "python3 (>= 3.${Python3_VERSION_MINOR}~), python3 (<< 3.${next}), python3-numpy")
endif()

# For stage.cmake.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  list(APPEND CPACK_QARV_PACKAGES ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
endforeach()
set(CPACK_QARV_SOURCE_DIR ${PROJECT_SOURCE_DIR})
include(CPack)
