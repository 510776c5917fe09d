#include "desktop/clients/registered_clients.h"

#include <system_error>

#include "desktop/clients/assistants.h"
#include "desktop/clients/registration.h"

namespace tessum {

std::vector<std::string> registeredClients(const Host& host) {
  std::vector<std::string> names;
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    try {
      const RegistrationFile file{assistant.files.front(), assistant.format};
      if (registrationIn(file, host).entry) names.emplace_back(assistant.name);
    } catch (const std::system_error&) {
    }
  }
  return names;
}

}  // namespace tessum
