# What a Debian package has beside the files of an installation: cpack runs this over its staged components.
find_program(GZIP gzip REQUIRED)

# The same bytes from the same file.
function(compress file)
  execute_process(COMMAND ${GZIP} -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(read OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(enter ${read} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
# Copies files of the sources into a folder of the package.
function(add folder)
  file(COPY ${ARGN} DESTINATION ${folder}
    FILE_PERMISSIONS ${read} DIRECTORY_PERMISSIONS ${enter}
    PATTERN CMakeLists.txt EXCLUDE)
endfunction()

set(here ${CMAKE_CURRENT_LIST_DIR})
foreach(component package IN ZIP_LISTS CPACK_COMPONENTS_ALL CPACK_QARV_PACKAGES)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
  set(doc ${root}/share/doc/${package})
  file(MAKE_DIRECTORY ${doc})
  file(CHMOD ${root}/share ${root}/share/doc ${doc} PERMISSIONS ${enter})
  add(${doc} ${here}/copyright)
  configure_file(${here}/changelog.in ${doc}/changelog.Debian @ONLY)
  compress(${doc}/changelog.Debian)
  file(GLOB pages ${root}/share/man/man*/*.[1-9])
  foreach(page IN LISTS pages)
    compress(${page})
  endforeach()
  if(component STREQUAL development)
    file(GLOB programs ${CPACK_QARV_SOURCE_DIR}/examples/*.cpp ${CPACK_QARV_SOURCE_DIR}/examples/*.h
      ${CPACK_QARV_SOURCE_DIR}/examples/c)
    add(${doc}/examples ${programs})
  elseif(component STREQUAL command)
    add(${doc}/examples ${CPACK_QARV_SOURCE_DIR}/examples/definitions
      ${CPACK_QARV_SOURCE_DIR}/examples/requirements ${CPACK_QARV_SOURCE_DIR}/examples/machines)
  endif()
endforeach()
