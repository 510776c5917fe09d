# Generates code for Wayland protocols from their descriptions.

find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
find_path(WAYLAND_CLIENT_INCLUDE_DIR wayland-client.h REQUIRED)
find_library(WAYLAND_CLIENT_LIBRARY wayland-client REQUIRED)
find_path(WAYLAND_PROTOCOLS staging/ext-idle-notify/ext-idle-notify-v1.xml REQUIRED
  PATHS /usr/local/share/wayland-protocols /usr/share/wayland-protocols)
find_path(PLASMA_WAYLAND_PROTOCOLS plasma-window-management.xml REQUIRED
  PATHS /usr/local/share/plasma-wayland-protocols /usr/share/plasma-wayland-protocols)

# add_wayland_protocols(TARGET SIDE descriptions...) gives TARGET the header NAME.h for each
# description NAME.xml; SIDE is client or server. With the extra argument CODE, TARGET also gets the
# interface definitions, which a program may contain only once.
function(add_wayland_protocols target side)
  cmake_parse_arguments(PARSE_ARGV 2 arg "CODE" "" "")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}_protocols")
  file(MAKE_DIRECTORY "${folder}")
  foreach(description IN LISTS arg_UNPARSED_ARGUMENTS)
    cmake_path(ABSOLUTE_PATH description)
    cmake_path(GET description STEM name)
    set(outputs "${folder}/${name}.h")
    set(code_command)
    if(arg_CODE)
      list(APPEND outputs "${folder}/${name}.c")
      set(code_command
        COMMAND "${WAYLAND_SCANNER}" private-code "${description}" "${folder}/${name}.c")
    endif()
    add_custom_command(
      OUTPUT ${outputs}
      COMMAND "${WAYLAND_SCANNER}" ${side}-header "${description}" "${folder}/${name}.h"
      ${code_command}
      DEPENDS "${description}"
      VERBATIM)
    target_sources(${target} PRIVATE ${outputs})
    list(APPEND headers "${folder}/${name}.h")
  endforeach()
  # The headers by themselves, for tools that read the sources without a build.
  add_custom_target(${target}_protocols DEPENDS ${headers})
  if(NOT TARGET wayland_protocols)
    add_custom_target(wayland_protocols)
  endif()
  add_dependencies(wayland_protocols ${target}_protocols)
  add_dependencies(${target} ${target}_protocols)
  target_include_directories(${target} SYSTEM PRIVATE "${folder}")
endfunction()
