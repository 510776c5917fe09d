#include "desktop/title_permission.h"

namespace tessum {

bool mayReadTitles() {
  return true;
}

}  // namespace tessum
