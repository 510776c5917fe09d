find_path(simdjson_headers simdjson.h REQUIRED)
find_library(simdjson_stub simdjson REQUIRED)
add_library(simdjson::simdjson UNKNOWN IMPORTED)
set_target_properties(simdjson::simdjson PROPERTIES
  IMPORTED_LOCATION "${simdjson_stub}"
  INTERFACE_INCLUDE_DIRECTORIES "${simdjson_headers}")
