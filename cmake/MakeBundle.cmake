# Packs the manifest and the server's folder of the working folder into BUNDLE. Assistants stumble
# over a folder among what is packed, so the files are named one by one.

file(GLOB files RELATIVE "${CMAKE_CURRENT_BINARY_DIR}" "${CMAKE_CURRENT_BINARY_DIR}/server/*")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E tar cf "${BUNDLE}" --format=zip manifest.json ${files}
  COMMAND_ERROR_IS_FATAL ANY)
