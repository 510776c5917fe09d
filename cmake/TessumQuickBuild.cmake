# Builds from nothing in half the time, for those who want to see Tessum now: scripts/run sets
# CMAKE_UNITY_BUILD, which has the compiler read the sources of one folder as one, so that it reads
# each header once. Names that are private to a source must then be unique in its folder; the sources
# of which that is not true are compiled alone.

if(NOT CMAKE_UNITY_BUILD)
  return()
endif()

set_target_properties(${tessum_libraries} PROPERTIES UNITY_BUILD_BATCH_SIZE 0)

# The host program is too large for one piece.
get_target_property(sources tessum_host SOURCES)
foreach(source IN LISTS sources)
  string(REGEX REPLACE "/.*" "" folder "${source}")
  set_source_files_properties("${PROJECT_SOURCE_DIR}/desktop/${source}"
    TARGET_DIRECTORY tessum_host PROPERTIES UNITY_GROUP "${folder}")
endforeach()
set_target_properties(tessum_host PROPERTIES UNITY_BUILD_MODE GROUP)

function(tessum_compile_alone target folder)
  list(TRANSFORM ARGN PREPEND "${PROJECT_SOURCE_DIR}/${folder}/")
  set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target}
    PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
tessum_compile_alone(tessum_host desktop
  clients/edit/json_text.cc clients/edit/toml_text.cc
  commands/clients.cc commands/update.cc
  recording/recorder_state.cc
  setup/recorder_process_posix.cc
  timeline/strips_picture.cc
  usage/usage_report.cc)
tessum_compile_alone(tessum_mcp core/mcp tools.cc)
tessum_compile_alone(tessum_platform core/platform temporary_file_posix.cc)
tessum_compile_alone(tessum_presence core/presence linux/kde_inhibitions.cc)
tessum_compile_alone(tessum_store core/store history.cc)
tessum_compile_alone(tessum_workspace core/workspace
  gnome/front_source.cc gnome/idle_source.cc gnome/shell_extension.cc
  wayland/idle_source.cc wayland/wlr_windows.cc
  x11/idle_counter.cc x11/idle_poll.cc x11/server_time.cc x11/window_properties.cc)
