# Install rules: the programs, the core library with its public headers, and the package for
# find_package(Tessum), which has one target for each folder and Tessum::Core for all.

include(CMakePackageConfigHelpers)

get_property(tessum_libraries GLOBAL PROPERTY TESSUM_LIBRARIES)

install(TARGETS ${tessum_libraries} TessumCore EXPORT TessumTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessum COMPONENT development)
install(EXPORT TessumTargets NAMESPACE Tessum::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tessum COMPONENT development)

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/TessumConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/TessumConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tessum)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TessumConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/TessumConfig.cmake"
  "${PROJECT_BINARY_DIR}/TessumConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tessum COMPONENT development)
