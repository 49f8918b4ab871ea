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

# What a build under the sanitizers is compiled with besides: the headers of the system are not what is
# searched, and take most of the compiler's time when they are.
string(FIND "${CMAKE_CXX_FLAGS}" "-fsanitize" at)
set(QARV_SANITIZED OFF)
if(NOT at EQUAL -1)
  set(QARV_SANITIZED ON)
endif()
if(QARV_SANITIZED AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_compile_options(
    $<$<COMPILE_LANGUAGE:CXX>:-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizers.ignore>)
endif()

# Exports of a shared library: those of a version script; a symbol that nobody defines is an error, but for
# the sanitizers' own, which are in the program.
function(qarv_exports target script)
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${script} $<$<NOT:$<BOOL:${QARV_SANITIZED}>>:-Wl,--no-undefined>)
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
endfunction()

# How long a build from nothing takes is mostly headers.  Both ways below spare them, and both hide a source
# that does not include what it uses: the presets without QARV_QUICK (dev, clang) find it.
option(QARV_QUICK "Compile several sources as one, and the headers that they share once" OFF)

# Headers that most sources of a target begin with, compiled once.  GCC gains little from them, and warns of
# what is not there.
function(qarv_precompile target)
  if(QARV_QUICK AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# Compiles the sources of a target as a few, all but those that are named.
function(qarv_together target)
  if(QARV_QUICK)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# Sources whose loops become lanes: GCC does so from -O3 on, whatever the build asks for otherwise.
# Where it groups straight-line code instead, GCC 12 fuses products and sums for AVX-512 in spite of
# -ffp-contract=off (vfmaddsub); without that grouping no speed is lost.
function(qarv_lanes)
  if(QARV_SANITIZED)
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS -Wno-pass-failed)
  elseif(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS
      -O3 $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)
  endif()
endfunction()

# What computes for long: optimised a little even where the sanitizers' build is not.
function(qarv_numbers target)
  if(QARV_SANITIZED)
    target_compile_options(${target} PRIVATE -O1)
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
