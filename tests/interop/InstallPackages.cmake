# Installs the packages of the lock file into the working folder, unless that was done since the lock
# file changed.

if(EXISTS node_modules/.package-lock.json
   AND NOT package-lock.json IS_NEWER_THAN node_modules/.package-lock.json)
  return()
endif()

execute_process(
  COMMAND ${NPM} ci --ignore-scripts --no-audit --no-fund
  COMMAND_ERROR_IS_FATAL ANY)
