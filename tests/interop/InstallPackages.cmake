# Installs the packages that the lock file names into the working folder, unless that has been
# done since the lock file changed.

if(EXISTS node_modules/.package-lock.json
   AND NOT package-lock.json IS_NEWER_THAN node_modules/.package-lock.json)
  return()
endif()

execute_process(
  COMMAND ${NPM} ci --ignore-scripts --no-audit --no-fund
  COMMAND_ERROR_IS_FATAL ANY)
