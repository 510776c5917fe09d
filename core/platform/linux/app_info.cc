#include "core/platform/app_info.h"

namespace tessum {

std::optional<std::string> SystemAppInfo::version() const {
  return TESSUM_VERSION;
}

}  // namespace tessum
