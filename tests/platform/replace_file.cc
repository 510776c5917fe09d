// replace_file PATH BYTES: replaces a file, for tests that make its system calls fail.

#include <cstdio>
#include <system_error>

#include "core/platform/files.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    tessum::SystemFiles().replace(argv[1], argv[2]);
    return 0;
  } catch (const std::system_error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
