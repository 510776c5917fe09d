#include "desktop/recording/http_endpoint.h"

#include <memory>
#include <system_error>

#include "core/store/database.h"

namespace tessum {

HTTPEndpoint::HTTPEndpoint(const std::string& databasePath, std::uint16_t port, const Clock& clock,
                           const Calendar& calendar)
    : server_(std::make_shared<Database>(databasePath, calendar), port, clock, calendar) {
  server_.start();
  if (const auto error = server_.listeningError()) {
    throw std::system_error(error, "Assistants cannot be served on port " + std::to_string(port));
  }
}

}  // namespace tessum
