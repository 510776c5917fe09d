// Says which file the system refused.

#pragma once

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

namespace tessum {

// Throws std::system_error with `what`, such as "Cannot read", before the path.
[[noreturn]] inline void throwFileError(std::string_view what, const std::string& path,
                                        int error = errno) {
  throw std::system_error(error, std::generic_category(), std::string(what) + " " + path);
}

}  // namespace tessum
