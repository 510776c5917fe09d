find_path(tomlplusplus_headers toml++/toml.h REQUIRED)
add_library(tomlplusplus::tomlplusplus INTERFACE IMPORTED)
set_target_properties(tomlplusplus::tomlplusplus PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "${tomlplusplus_headers}")
