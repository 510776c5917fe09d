#include "desktop/endpoint/http_endpoint.h"

#include <memory>
#include <system_error>

#include "core/store/database.h"
#include "core/store/lock_patience.h"
#include "desktop/endpoint/admission.h"

namespace tessum {
namespace {

// The recorder, or another program, may be writing at this moment.
std::shared_ptr<Database> openedStore(const std::string& path, const Calendar& calendar) {
  return outlastingLocks(kLockPatienceSeconds,
                         [&] { return std::make_shared<Database>(path, calendar); });
}

}  // namespace

HTTPEndpoint::HTTPEndpoint(const std::string& databasePath, std::uint16_t port, OpenTo openTo,
                           const Clock& clock, const Calendar& calendar)
    : server_(openedStore(databasePath, calendar), port, clock, calendar) {
  if (openTo == OpenTo::everyone) {
    server_.start();
  } else {
    server_.start(admissionOfThisComputer());
  }
  if (const auto error = server_.listeningError()) {
    throw std::system_error(error, "Assistants cannot be served on port " + std::to_string(port));
  }
}

}  // namespace tessum
