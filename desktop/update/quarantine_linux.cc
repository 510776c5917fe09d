#include "desktop/update/quarantine.h"

namespace tessum {

// Linux has no such check.
bool quarantine(const std::string&) {
  return false;
}

}  // namespace tessum
