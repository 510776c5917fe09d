#include "desktop/leftovers.h"

#include "core/platform/files.h"
#include "desktop/clients/assistants.h"
#include "desktop/settings/settings_file.h"

namespace tessum {

void removeLeftovers(const Locations& locations) {
  removeLeftBehind(locations.dataFolder() + "/registrations.json");
  removeLeftBehind(settingsPath(locations));
  for (const Assistant& assistant : knownAssistants(locations)) {
    for (const std::string& file : assistant.files) removeLeftBehind(file);
  }
}

}  // namespace tessum
