# Packages for users. scripts/package makes them all.
#
#   cpack -G DEB, cpack -G TGZ      both programs with all that belongs to them
#   cmake --build . --target mcpb   the stdio server as a bundle that an assistant installs
#
# On Linux no installed file contains its install path, so one build makes all packages, whatever its
# prefix.

if(NOT APPLE)
  # "tessum" is what people type. A file system that ignores case has it already.
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/packaging")
  file(CREATE_LINK Tessum "${PROJECT_BINARY_DIR}/packaging/tessum" SYMBOLIC)
  install(FILES "${PROJECT_BINARY_DIR}/packaging/tessum"
    DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)

  install(FILES packaging/icons/tessum.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT programs)

  include(TessumDocuments)
else()
  install(FILES packaging/man/tessum.1 packaging/man/TessumMCP.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)
endif()

# bash and fish look for completions under the name that was typed, which a file system that ignores
# case has twice already.
set(names tessum)
if(NOT APPLE)
  list(APPEND names Tessum)
endif()
foreach(name IN LISTS names)
  install(FILES packaging/completions/tessum.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME ${name} COMPONENT programs)
  install(FILES packaging/completions/tessum.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    RENAME ${name}.fish COMPONENT programs)
endforeach()
install(FILES packaging/completions/_tessum
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT programs)

string(TOLOWER "${CMAKE_SYSTEM_NAME}" system)
set(system_and_processor "${system}-${CMAKE_SYSTEM_PROCESSOR}")

# The server once more, for the bundle, which contains its libraries because an assistant installs
# nothing else. On macOS the one that the system lacks stays in Homebrew's folder.
get_target_property(server_sources TessumMCP SOURCES)
list(TRANSFORM server_sources PREPEND server/)
add_executable(tessum_bundled_server EXCLUDE_FROM_ALL ${server_sources})
target_link_libraries(tessum_bundled_server PRIVATE
  tessum_mcp tessum_store tessum_platform tessum_options)
if(NOT APPLE)
  set_target_properties(tessum_bundled_server PROPERTIES BUILD_RPATH "\$ORIGIN")
endif()

set(bundle "${PROJECT_BINARY_DIR}/tessum-${PROJECT_VERSION}-${system_and_processor}.mcpb")
set(bundle_folder "${PROJECT_BINARY_DIR}/packaging/mcpb")
set(TESSUM_BUNDLE_PLATFORM "${system}")
configure_file(packaging/mcpb/manifest.json.in "${bundle_folder}/manifest.json" @ONLY)
add_custom_target(mcpb
  COMMAND "${CMAKE_COMMAND}" -D PROGRAM=$<TARGET_FILE:tessum_bundled_server> -D BUNDLE=${bundle}
    -P "${CMAKE_CURRENT_LIST_DIR}/MakeBundle.cmake"
  WORKING_DIRECTORY "${bundle_folder}"
  DEPENDS tessum_bundled_server
  VERBATIM)
set_target_properties(mcpb PROPERTIES BUNDLE_FILE "${bundle}")

set(CPACK_PACKAGE_NAME tessum)
set(CPACK_PACKAGE_VENDOR Tessum)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "history of your day, for you and your AI assistants")
set(CPACK_PACKAGE_DESCRIPTION
  "Records which application is in front and its window's title, on this
computer only, and lets AI assistants read that history through the Model
Context Protocol.")
set(CPACK_PACKAGE_CONTACT "The Tessum developers <maintainers@tessum.example>")
set(CPACK_COMPONENTS_ALL programs)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
# Whatever the umask of whoever makes the package.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_FILE_NAME "tessum-${PROJECT_VERSION}-${system_and_processor}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/linux/debian/prerm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ca-certificates, xdg-utils")
set(CPACK_GENERATOR "DEB;TGZ")
include(CPack)
