# Puts files that packages ship into a program that writes them, too, as constants of the header
# tessum_shipped_files.h.
#
#   tessum_shipped_files(TARGET NAME FILE [NAME FILE]...)

function(tessum_shipped_files target)
  set(header "#pragma once\n\nnamespace tessum {\n\n")
  while(ARGN)
    list(POP_FRONT ARGN name path)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${path}")
    file(READ "${path}" text)
    string(APPEND header "inline constexpr char ${name}[] = R\"TESSUM(${text})TESSUM\";\n")
  endwhile()
  string(APPEND header "\n}  // namespace tessum\n")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/shipped")
  file(GENERATE OUTPUT "${folder}/tessum_shipped_files.h" CONTENT "${header}")
  target_include_directories(${target} PRIVATE "${folder}")
endfunction()
