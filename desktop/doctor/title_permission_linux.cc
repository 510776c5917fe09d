#include "desktop/doctor/title_permission.h"

namespace tessum {

bool mayReadTitles() {
  return true;
}

}  // namespace tessum
