# How every target of the project is compiled.

add_library(tessum_options INTERFACE)
target_compile_features(tessum_options INTERFACE cxx_std_20)
target_compile_options(tessum_options INTERFACE -Wall -Wextra -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # With optimization, these two give false warnings inside std::string and std::variant.
  target_compile_options(tessum_options INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(NOT APPLE)
  # Required of Debian's packages; Apple's compiler does it by itself.
  target_compile_options(tessum_options INTERFACE
    "$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
  # Each program gets only those functions of the libraries that it uses.
  target_compile_options(tessum_options INTERFACE
    "$<$<CONFIG:Release>:-ffunction-sections;-fdata-sections>")
  target_link_options(tessum_options INTERFACE "$<$<CONFIG:Release>:-Wl,--gc-sections>")
endif()
if(TESSUM_WARNINGS_ARE_ERRORS)
  target_compile_options(tessum_options INTERFACE -Werror)
endif()

# tessum_library(NAME [PUBLIC libraries...] [PRIVATE libraries...] [HEADERS files...] SOURCES
# files...) makes the static library tessum_NAME, exported as Tessum::NAME. The HEADERS are
# installed: those that programs outside this project include, and what these include. A source
# whose name ends in _posix, _linux or _mac is for that system; the caller lists the one that fits.
function(tessum_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "PUBLIC;PRIVATE;HEADERS;SOURCES")
  set(target tessum_${name})
  add_library(${target} STATIC ${arg_SOURCES})
  add_library(Tessum::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    POSITION_INDEPENDENT_CODE ON)
  target_sources(${target} PUBLIC
    FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${arg_HEADERS})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tessum>)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target}
    PUBLIC ${arg_PUBLIC}
    PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:tessum_options>)
  set_property(GLOBAL APPEND PROPERTY TESSUM_LIBRARIES ${target})
endfunction()
