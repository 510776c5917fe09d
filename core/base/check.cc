#include "core/base/check.h"

#include <cstdio>
#include <cstdlib>

namespace tessum {

void stopProcess(std::string_view message) {
  std::fprintf(stderr, "Tessum stopped: %.*s\n", static_cast<int>(message.size()), message.data());
  std::abort();
}

}  // namespace tessum
