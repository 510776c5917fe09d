#include <ApplicationServices/ApplicationServices.h>

#include "desktop/doctor/title_permission.h"

namespace tessum {

bool mayReadTitles() {
  return AXIsProcessTrusted() != 0;
}

}  // namespace tessum
