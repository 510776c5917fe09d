#include "desktop/setup/desktop_helper.h"

namespace tessum {

std::vector<SetupStep> desktopHelperSteps(const Host&) {
  return {};
}

void turnOffShellExtension(const std::string&) {}

}  // namespace tessum
