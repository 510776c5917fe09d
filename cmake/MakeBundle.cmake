# Packs the manifest in the working folder and PROGRAM into BUNDLE, with the libraries that PROGRAM
# needs except the C library's, which must come from the system.

file(REMOVE_RECURSE server)
file(MAKE_DIRECTORY server)
file(COPY_FILE "${PROGRAM}" server/TessumMCP)
if(NOT CMAKE_HOST_APPLE)
  file(GET_RUNTIME_DEPENDENCIES
    EXECUTABLES "${PROGRAM}"
    RESOLVED_DEPENDENCIES_VAR libraries
    PRE_EXCLUDE_REGEXES [[^ld-linux]] [[^lib(c|m|pthread|dl|rt)\.so]])
  foreach(library IN LISTS libraries)
    cmake_path(GET library FILENAME name)
    file(COPY_FILE "${library}" "server/${name}")
  endforeach()
endif()

# Assistants cannot handle folder entries in the archive, so we name the files one by one.
file(GLOB files RELATIVE "${CMAKE_CURRENT_BINARY_DIR}" "${CMAKE_CURRENT_BINARY_DIR}/server/*")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E tar cf "${BUNDLE}" --format=zip manifest.json ${files}
  COMMAND_ERROR_IS_FATAL ANY)
