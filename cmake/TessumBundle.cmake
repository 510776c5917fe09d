# On macOS the build makes Tessum.app, which holds the server beside the host program.
#
# Its Info.plist makes Tessum an agent (LSUIElement), with no window and no place in the Dock. macOS
# shows the usage texts when it asks the user to let Tessum into a folder that a command names. For
# the permission to read window titles macOS has its own text.

# Made on every system, so that its test can run everywhere.
set(info_plist "${PROJECT_BINARY_DIR}/packaging/Info.plist")
configure_file("${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in" "${info_plist}" @ONLY)

if(APPLE)
  set_target_properties(Tessum PROPERTIES
    MACOSX_BUNDLE TRUE
    MACOSX_BUNDLE_INFO_PLIST "${info_plist}")
endif()
