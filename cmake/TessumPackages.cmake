# Packages: what people install.
#
#   cpack -G DEB, cpack -G TGZ      both programs with all that belongs to them
#   cmake --build . --target mcpb   the stdio server as a bundle that an assistant installs
#
# A package has the paths of the build that it is made from: one for a system is configured with
# -DCMAKE_INSTALL_PREFIX=/usr.

if(NOT APPLE)
  # "tessum" is what people type. A file system that ignores case has it already.
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/packaging")
  file(CREATE_LINK Tessum "${PROJECT_BINARY_DIR}/packaging/tessum" SYMBOLIC)
  install(FILES "${PROJECT_BINARY_DIR}/packaging/tessum"
    DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)

  install(FILES packaging/icons/tessum.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT programs)
endif()

install(FILES packaging/man/tessum.1 packaging/man/TessumMCP.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)
install(FILES packaging/completions/tessum.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME tessum COMPONENT programs)
install(FILES packaging/completions/_tessum
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT programs)
install(FILES packaging/completions/tessum.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT programs)

string(TOLOWER "${CMAKE_SYSTEM_NAME}" TESSUM_BUNDLE_PLATFORM)
configure_file(packaging/mcpb/manifest.json.in packaging/mcpb/manifest.json @ONLY)
add_custom_target(mcpb
  COMMAND "${CMAKE_COMMAND}" -E make_directory server
  COMMAND "${CMAKE_COMMAND}" -E copy $<TARGET_FILE:TessumMCP> server/TessumMCP
  COMMAND "${CMAKE_COMMAND}" -E tar cf "${PROJECT_BINARY_DIR}/tessum-${PROJECT_VERSION}.mcpb"
    --format=zip manifest.json server/TessumMCP
  WORKING_DIRECTORY "${PROJECT_BINARY_DIR}/packaging/mcpb"
  DEPENDS TessumMCP
  VERBATIM)

set(CPACK_PACKAGE_NAME tessum)
set(CPACK_PACKAGE_VENDOR Tessum)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "record of your day, for you and your AI assistants")
set(CPACK_PACKAGE_DESCRIPTION
  "Records which application is in front and its window's title, on this computer only, and lets
AI assistants read that record through the Model Context Protocol.")
set(CPACK_PACKAGE_CONTACT "The Tessum developers <maintainers@tessum.example>")
set(CPACK_COMPONENTS_ALL programs)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
set(CPACK_GENERATOR "DEB;TGZ")
include(CPack)
