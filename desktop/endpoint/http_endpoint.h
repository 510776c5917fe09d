// The history, offered to assistants over HTTP.

#pragma once

#include <cstdint>
#include <string>

#include "core/mcp/mcp_server.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"

namespace tessum {

// Who may use an endpoint.
enum class OpenTo {
  thisComputer,  // its programs and the endpoint's own pages, as admissionOfThisComputer() says
  everyone       // on every network, and any web page; connections may wait without end
};

// Open for the object's whole lifetime. It has its own connection to the database and its own
// thread. Main thread only.
class HTTPEndpoint {
 public:
  // Serves the database at `databasePath` on `port`, after up to 5 s for a lock of another program.
  // `clock` and `calendar` must outlive the endpoint, whose thread uses them: nobody else may use
  // the calendar meanwhile. Throws DatabaseError, MCPServerError::invalidPort, and
  // std::system_error that says why the port cannot be had.
  HTTPEndpoint(const std::string& databasePath, std::uint16_t port, OpenTo openTo,
               const Clock& clock, const Calendar& calendar);

  // The URL for clients on this computer.
  [[nodiscard]] std::string url() const { return server_.endpointURL(); }

 private:
  MCPServer server_;
};

}  // namespace tessum
