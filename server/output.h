// Bytes to a file descriptor.

#pragma once

#include <string_view>

namespace tessum {

// Writes all of `bytes` to `descriptor`, in one system call where it takes them in one. Throws
// std::system_error when it does not take them.
void writeAll(int descriptor, std::string_view bytes);

}  // namespace tessum
