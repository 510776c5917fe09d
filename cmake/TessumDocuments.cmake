# The documents of the Debian package and of the archive, as Debian wants them: manual pages and the
# changelog compressed without a time stamp, the rest as it is.

set(compressed)

# tessum_compress(FILE NAME) makes NAME.gz of FILE in the build tree.
function(tessum_compress file name)
  set(output "${PROJECT_BINARY_DIR}/packaging/${name}.gz")
  add_custom_command(OUTPUT "${output}"
    COMMAND gzip -9nc "${file}" > "${output}"
    DEPENDS "${file}"
    VERBATIM)
  set(compressed ${compressed} "${output}" PARENT_SCOPE)
endfunction()

configure_file(packaging/linux/debian/changelog.in packaging/changelog @ONLY)
tessum_compress("${PROJECT_SOURCE_DIR}/packaging/man/tessum.1" tessum.1)
tessum_compress("${PROJECT_SOURCE_DIR}/packaging/man/TessumMCP.1" TessumMCP.1)
tessum_compress("${PROJECT_BINARY_DIR}/packaging/changelog" changelog)
add_custom_target(compressed_documents ALL DEPENDS ${compressed})

# The program has two names.
file(CREATE_LINK tessum.1.gz "${PROJECT_BINARY_DIR}/packaging/Tessum.1.gz" SYMBOLIC)
install(FILES
    "${PROJECT_BINARY_DIR}/packaging/tessum.1.gz"
    "${PROJECT_BINARY_DIR}/packaging/Tessum.1.gz"
    "${PROJECT_BINARY_DIR}/packaging/TessumMCP.1.gz"
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)

set(documents ${CMAKE_INSTALL_DATADIR}/doc/tessum)
install(FILES README.md CHANGELOG.md "${PROJECT_BINARY_DIR}/packaging/changelog.gz"
  DESTINATION ${documents} COMPONENT programs)
install(DIRECTORY docs DESTINATION ${documents} COMPONENT programs)
