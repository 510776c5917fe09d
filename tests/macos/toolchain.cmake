# Builds for macOS 13 on Linux. The programs are linked against stubs, which hold names only, so they
# cannot run. scripts/check-macos sets the environment variables.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR "$ENV{TESSUM_MACOS_CPU}")
set(target "${CMAKE_SYSTEM_PROCESSOR}-macos.13.0")
set(stubs "${CMAKE_CURRENT_LIST_DIR}/stubs")

# CMake's own tests of a compiler use linker options that this linker does not know.
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET "${target}")
  set(CMAKE_${language}_ABI_COMPILED TRUE)
  set(CMAKE_${language}_COMPILER_WORKS TRUE)
endforeach()
set(CMAKE_C_COMPILER "$ENV{TESSUM_MACOS_COMPILERS}/cc")
set(CMAKE_CXX_COMPILER "$ENV{TESSUM_MACOS_COMPILERS}/c++")
set(CMAKE_OBJCXX_COMPILER "$ENV{TESSUM_MACOS_COMPILERS}/c++")
set(CMAKE_AR "$ENV{TESSUM_MACOS_COMPILERS}/ar")
set(CMAKE_RANLIB "$ENV{TESSUM_MACOS_COMPILERS}/ranlib")
set(CMAKE_SIZEOF_VOID_P 8)
set(CMAKE_INSTALL_NAME_TOOL true)

# -I, not -isystem: the stubs must come before the compiler's own objc/ headers. Without the macro the
# C++ library marks what macOS 13 lacks.
set(CMAKE_C_FLAGS_INIT "-I${stubs}/include -fno-sanitize=undefined")
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  ${CMAKE_C_FLAGS_INIT}
  -U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS
  -Werror=unguarded-availability)
string(JOIN " " CMAKE_OBJCXX_FLAGS_INIT
  ${CMAKE_CXX_FLAGS_INIT}
  -Werror=objc-method-access
  -Werror=undeclared-selector
  -Werror=incompatible-pointer-types
  -Wno-unused-command-line-argument)
# On a Mac, Foundation links libobjc.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-F${stubs}/Frameworks -L${stubs}/lib -lobjc")

# Libraries are stubs. Their headers are linked one by one, as /usr/include would also bring the C
# library of Linux.
set(CMAKE_FIND_ROOT_PATH "${stubs}" "$ENV{TESSUM_MACOS_HEADERS}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
