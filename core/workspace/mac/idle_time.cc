#include "core/workspace/mac/idle_time.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tessum {

double secondsSinceInput() {
  return CGEventSourceSecondsSinceLastEventType(kCGEventSourceStateCombinedSessionState,
                                                kCGAnyInputEventType);
}

}  // namespace tessum
