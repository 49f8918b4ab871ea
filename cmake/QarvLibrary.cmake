# How every target of the project is compiled, and where a library keeps its headers.

# Where the system has no shared libraries, all of them are static.
get_property(QARV_SHARED GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)

# Compile settings of a target: the standard, the warnings, one result for every floating-point formula.
function(qarv_compile_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  # Contraction of a * b + c would give some samples two possible values; consumers inline templates
  # and compare samples, so it holds for them too.
  target_compile_options(${target} PUBLIC $<$<CXX_COMPILER_ID:GNU,Clang>:-ffp-contract=off>)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
    -Wold-style-cast)
endfunction()

# Sources whose loops become lanes: GCC does so from -O3 on, whatever the build asks for otherwise.
# Where it groups straight-line code instead, GCC 12 fuses products and sums for AVX-512 in spite of
# -ffp-contract=off (vfmaddsub); without that grouping no speed is lost.
function(qarv_lanes)
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS
      -O3 $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)
  endif()
endfunction()

# A library with its public headers below hdr: qarv_library(name TYPE HEADERS ... SOURCES ...).
function(qarv_library target type)
  cmake_parse_arguments(ARG "" "" "HEADERS;SOURCES" ${ARGN})
  add_library(${target} ${type})
  qarv_compile_settings(${target})
  target_sources(${target}
    PRIVATE ${ARG_SOURCES}
    PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR}/hdr FILES ${ARG_HEADERS})
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ${QARV_SHARED} CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()
