#include "desktop/leftovers.h"

#include <exception>

#include "core/platform/files.h"
#include "desktop/clients/assistants.h"
#include "desktop/clients/registration_records.h"
#include "desktop/settings/settings_file.h"
#include "desktop/setup/setup_changes.h"

namespace tessum {
namespace {

// Both notes are written before the files that they tell of.
void removeBesideNotedFiles(const Host& host) {
  try {
    for (const std::string& file : recordedFiles(host)) removeLeftBehind(file);
    const SetupChanges changes(host);
    for (const SetupChange& change : changes.all()) {
      if (change.kind == SetupChange::Kind::file) removeLeftBehind(change.target);
    }
  } catch (const std::exception&) {
    // The commands that need the notes say what is wrong with them.
  }
}

}  // namespace

void removeLeftovers(const Host& host) {
  const Locations& locations = host.locations;
  removeLeftBehind(locations.dataFolder() + "/registrations.json");
  removeLeftBehind(settingsPath(locations));
  for (const Assistant& assistant : knownAssistants(locations)) {
    for (const std::string& file : assistant.files) removeLeftBehind(file);
  }
  removeBesideNotedFiles(host);
}

}  // namespace tessum
