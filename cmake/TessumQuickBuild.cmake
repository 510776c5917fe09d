# Builds from nothing in a third of the time, for those who want to see Tessum now, and for checks with
# sanitizers, with clang-tidy and for a second CPU: CMAKE_UNITY_BUILD has the compiler read the sources
# of one target as one, so that it reads each header and instantiates each template once. Names that
# are private to a source must then be unique in what is read together.

if(NOT CMAKE_UNITY_BUILD)
  return()
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
