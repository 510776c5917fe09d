# The URLs where the update checker asks for releases: deployment settings, fixed at build time.
# Without the primary one the programs never look for a newer version.

set(TESSUM_UPDATE_PRIMARY_URL "" CACHE STRING "Base URL of the release service, if there is one")
set(TESSUM_UPDATE_FALLBACK_URL "" CACHE STRING
  "Base URL that is asked when the primary one fails; may be empty")

# Sets the variable `result` to TRUE or FALSE. isBaseUrl() of core/update/urls.h rejects the same
# texts at run time.
function(tessum_is_base_url text result)
  set(hex "[0-9A-Fa-f]")
  set(name "[A-Za-z0-9][A-Za-z0-9._~-]*")
  set(address "\\[[0-9A-Fa-f.]*:[0-9A-Fa-f.]*:[0-9A-Fa-f.:]*\\]")
  set(port "[0-9][0-9]?[0-9]?[0-9]?[0-9]?")
  set(path "/([A-Za-z0-9._~!$&'()*+,=:@/-]|%${hex}${hex})*")
  set(${result} FALSE PARENT_SCOPE)
  if(NOT text MATCHES "^https://(${name}|${address})(:(${port}))?(${path})?$")
    return()
  endif()
  if(CMAKE_MATCH_2 AND (CMAKE_MATCH_3 LESS 1 OR CMAKE_MATCH_3 GREATER 65535))
    return()
  endif()
  set(${result} TRUE PARENT_SCOPE)
endfunction()

if(TESSUM_UPDATE_FALLBACK_URL AND NOT TESSUM_UPDATE_PRIMARY_URL)
  message(FATAL_ERROR "TESSUM_UPDATE_FALLBACK_URL is set, but TESSUM_UPDATE_PRIMARY_URL is not")
endif()
foreach(setting TESSUM_UPDATE_PRIMARY_URL TESSUM_UPDATE_FALLBACK_URL)
  tessum_is_base_url("${${setting}}" is_base_url)
  if(NOT is_base_url AND NOT "${${setting}}" STREQUAL "")
    message(FATAL_ERROR
      "${setting} is not an absolute HTTPS URL without query and fragment: ${${setting}}")
  endif()
endforeach()
