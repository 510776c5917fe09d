# On macOS the build makes Tessum.app. It holds the server beside the host program, which registers
# with assistants the server that it finds there.
#
# The bundle makes Tessum an agent (LSUIElement): it has no window and no place in the Dock. The
# usage texts are shown where macOS asks the user to let it into a folder that a command names.
# For the permission to read window titles (accessibility) macOS has a text of its own.

# Made on every system, so that its test can run on each.
set(info_plist "${PROJECT_BINARY_DIR}/packaging/Info.plist")
configure_file("${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in" "${info_plist}" @ONLY)

if(APPLE)
  set_target_properties(Tessum PROPERTIES
    MACOSX_BUNDLE TRUE
    MACOSX_BUNDLE_INFO_PLIST "${info_plist}")
  add_custom_command(TARGET Tessum POST_BUILD
    COMMAND "${CMAKE_COMMAND}" -E copy
      "$<TARGET_FILE:TessumMCP>" "$<TARGET_BUNDLE_CONTENT_DIR:Tessum>/MacOS"
    VERBATIM)
  add_dependencies(Tessum TessumMCP)
endif()
