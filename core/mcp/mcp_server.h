// The protocol engine: one encoded message in, one encoded response, or none, out.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/json/reader.h"
#include "core/mcp/json_rpc.h"
#include "core/mcp/mcp_records.h"
#include "core/mcp/mcp_server_error.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/database.h"

namespace tessum {

// Answers for one store. It knows nothing of clients or connections: every method may come in any
// order. Not thread-safe: its caller enters it with one message after another.
class MCPServer {
 public:
  // `port` is for the HTTP transport and is not bound here. `clock` and `calendar` must outlive
  // the server. Touches neither the network nor the store.
  MCPServer(std::shared_ptr<Database> database, std::uint16_t port, const Clock& clock,
            const Calendar& calendar);

  [[nodiscard]] std::uint16_t port() const { return port_; }

  // Answers one message. Absent for a notification, which is dropped whatever it names. A message
  // that cannot be read is answered with a parse error without id. Never throws for what the
  // message holds.
  [[nodiscard]] std::optional<std::string> handleBody(json::PaddedView body);

  // Answers one request by its method.
  [[nodiscard]] JSONRPCResponse handle(const JSONRPCRequest& request);

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Methods. Each response has the request's id.

  [[nodiscard]] JSONRPCResponse handleInitialize(const JSONRPCRequest& request);
  [[nodiscard]] JSONRPCResponse handleToolsList(const JSONRPCRequest& request);
  [[nodiscard]] JSONRPCResponse handleToolsCall(const JSONRPCRequest& request);
  [[nodiscard]] JSONRPCResponse handleResourcesList(const JSONRPCRequest& request);
  [[nodiscard]] JSONRPCResponse handleResourcesRead(const JSONRPCRequest& request);

  ////////////////////////////////////////////////////////////////////////////////////////////
  // What the methods offer.

  // The five tools, in the order in which they are listed.
  [[nodiscard]] static std::vector<MCPTool> availableTools();

  // Runs a tool. An argument of the wrong kind counts as absent. Throws DatabaseError.
  [[nodiscard]] MCPToolResult callTool(std::string_view name, const AnyCodable& arguments);

  // Reads a resource; its URI is compared exactly. Throws MCPServerError::unknownResource and
  // DatabaseError.
  [[nodiscard]] MCPResourceReadResult readResource(const std::string& uri);

 private:
  [[nodiscard]] MCPToolResult annotate(const AnyCodable& arguments);
  [[nodiscard]] std::string activityReport(Date day, std::int64_t limit);
  [[nodiscard]] Date dayArgument(const AnyCodable& arguments) const;

  const std::shared_ptr<Database> database_;
  const std::uint16_t port_;
  const Clock& clock_;
  const Calendar& calendar_;
};

}  // namespace tessum
