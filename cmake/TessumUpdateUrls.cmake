# Where the update checker asks for releases: configuration of a deployment, fixed in each build.

set(TESSUM_UPDATE_PRIMARY_URL "https://updates.tessum.example/" CACHE STRING
  "Base URL of the release service")
set(TESSUM_UPDATE_FALLBACK_URL "https://updates-fallback.tessum.example/" CACHE STRING
  "Base URL that is asked when the primary one fails")

# isBaseUrl() of core/update/urls.h refuses the same texts when the program runs.
foreach(setting TESSUM_UPDATE_PRIMARY_URL TESSUM_UPDATE_FALLBACK_URL)
  if(NOT "${${setting}}" MATCHES
      "^https://[[A-Za-z0-9][][A-Za-z0-9._~:-]*(/[A-Za-z0-9._~!$&'()*+,;=:@%/-]*)?$")
    message(FATAL_ERROR
      "${setting} is not an absolute HTTPS URL without query and fragment: ${${setting}}")
  endif()
endforeach()
