# Libraries of headers for another machine than the one that builds: they are those of the latter, without the headers
# of its C library beside them.  What asks find_package for one gets it from here.
#   qarv_header_library(package target folder [definition...])
function(qarv_header_library package target folder)
  find_path(QARV_${package}_DIR ${folder} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(include ${PROJECT_BINARY_DIR}/include/${package})
  file(MAKE_DIRECTORY ${include})
  file(CREATE_LINK ${QARV_${package}_DIR}/${folder} ${include}/${folder} SYMBOLIC)
  string(TOLOWER ${package} name)
  file(WRITE ${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/${name}-config.cmake "\
if(NOT TARGET ${target})
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} INTERFACE ${include})
  target_compile_definitions(${target} INTERFACE ${ARGN})
endif()
")
endfunction()

qarv_header_library(fmt fmt::fmt fmt FMT_HEADER_ONLY)
# Here both are the same.
add_library(fmt::fmt-header-only INTERFACE IMPORTED GLOBAL)
target_include_directories(fmt::fmt-header-only INTERFACE ${PROJECT_BINARY_DIR}/include/fmt)
target_compile_definitions(fmt::fmt-header-only INTERFACE FMT_HEADER_ONLY)
qarv_header_library(nlohmann_json nlohmann_json::nlohmann_json nlohmann)
qarv_header_library(CLI11 CLI11::CLI11 CLI)
