#include "desktop/doctor/title_permission.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tessum {

bool mayReadTitles() {
  return AXIsProcessTrusted() != 0;
}

}  // namespace tessum
