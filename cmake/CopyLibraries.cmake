# Copies the libraries of PROGRAM beside it, but for those of the C library, which belong to the
# system that they run on.

file(GET_RUNTIME_DEPENDENCIES
  EXECUTABLES "${PROGRAM}"
  RESOLVED_DEPENDENCIES_VAR libraries
  PRE_EXCLUDE_REGEXES [[^ld-linux]] [[^lib(c|m|pthread|dl|rt)\.so]])
cmake_path(GET PROGRAM PARENT_PATH folder)
foreach(library IN LISTS libraries)
  cmake_path(GET library FILENAME name)
  file(COPY_FILE "${library}" "${folder}/${name}" ONLY_IF_DIFFERENT)
endforeach()
