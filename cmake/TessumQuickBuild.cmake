# Builds from nothing in a third of the time: CMAKE_UNITY_BUILD has the compiler read the sources of one
# target as one, so that it reads each header and instantiates each template once. Most scripts
# use it. Names that are private to a source must then be unique in what is read together.

if(NOT CMAKE_UNITY_BUILD)
  return()
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ takes sources that are read together for headers, which should have no private names.
  target_compile_options(tessum_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
endif()

set_target_properties(${tessum_libraries} PROPERTIES UNITY_BUILD_BATCH_SIZE 0)

# Two processors share the host program.
function(tessum_read_together group folders)
  get_target_property(sources tessum_host SOURCES)
  list(FILTER sources INCLUDE REGEX "^(${folders})")
  list(TRANSFORM sources PREPEND "${PROJECT_SOURCE_DIR}/desktop/")
  set_source_files_properties(${sources}
    TARGET_DIRECTORY tessum_host PROPERTIES UNITY_GROUP ${group})
endfunction()
tessum_read_together(commands
  "command_line/|commands/|endpoint/|host/|leftovers|program|recording/|update/")
tessum_read_together(reports
  "clients/|data/|doctor/|import/|periods/|reports/|settings/|setup/|text/|timeline/|usage/")
set_target_properties(tessum_host PROPERTIES UNITY_BUILD_MODE GROUP)
