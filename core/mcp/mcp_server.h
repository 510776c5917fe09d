// The protocol engine: one encoded message in, one encoded response, or none, out.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/json/padded.h"
#include "core/loop/serial_queue.h"
#include "core/mcp/json_rpc.h"
#include "core/mcp/mcp_records.h"
#include "core/mcp/mcp_server_error.h"
#include "core/mcp/tool_arguments.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/database.h"

namespace tessum {

class HTTPTransport;
struct HTTPAdmission;

// Serves one database. It keeps no state for clients or connections, so methods may come in any
// order. Not thread-safe: the caller passes it one message at a time, or leaves that to the HTTP
// transport from start() on. It may be destroyed on any thread, even while the transport is
// answering: the destructor waits for that answer.
class MCPServer {
 public:
  // `port` is for the HTTP transport and is not bound here. `clock` and `calendar` must outlive the
  // server. Touches neither the network nor the database.
  MCPServer(std::shared_ptr<Database> database, std::uint16_t port, const Clock& clock,
            const Calendar& calendar);

  MCPServer(const MCPServer&) = delete;
  MCPServer& operator=(const MCPServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }

  // Answers one message. Absent for a notification, which is dropped whatever its method. A message
  // that cannot be read gets a parse error without id. No message makes it throw.
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

  // Runs a tool. Throws DatabaseError.
  [[nodiscard]] MCPToolResult callTool(std::string_view name, const ToolArguments& arguments);

  // Reads a resource; its URI is compared exactly. Throws MCPServerError::unknownResource and
  // DatabaseError.
  [[nodiscard]] MCPResourceReadResult readResource(const std::string& uri);

  ////////////////////////////////////////////////////////////////////////////////////////////
  // The HTTP transport, which enters the engine on a queue of its own. Its calls are defined in
  // core/http, which only the programs that use them link.

  // Answers on port() of every interface, in place of what an earlier start() opened. Throws
  // MCPServerError::invalidPort for port 0 and std::system_error when the system gives no socket.
  // A port that is taken or forbidden is no error here: see listeningError().
  void start();

  // The same, but whom the transport answers is for `admission` to say (core/http).
  void start(const HTTPAdmission& admission);

  // Accepts no connection from now on; those accepted before are served. Does nothing when
  // nothing was started.
  void stop();

  // Why clients cannot reach the transport that start() opened; no error when they can, and after
  // stop().
  [[nodiscard]] std::error_code listeningError() const;

  // The transport's URL for clients on this computer, such as http://localhost:7384/mcp.
  [[nodiscard]] std::string endpointURL() const;

 private:
  struct Tool;

  // The table of tools.
  [[nodiscard]] static std::span<const Tool> tools();

  [[nodiscard]] MCPToolResult getActivities(const ToolArguments& arguments);
  [[nodiscard]] MCPToolResult searchActivities(const ToolArguments& arguments);
  [[nodiscard]] MCPToolResult getAppUsage(const ToolArguments& arguments);
  [[nodiscard]] MCPToolResult annotate(const ToolArguments& arguments);
  [[nodiscard]] MCPToolResult getAnnotations(const ToolArguments& arguments);

  void startFor(const HTTPAdmission* admission);

  [[nodiscard]] std::string activityReport(Date day, std::int64_t limit);

  // The day that the arguments name, else today.
  [[nodiscard]] Date dayOf(const ToolArguments& arguments) const;

  const std::shared_ptr<Database> database_;
  const std::uint16_t port_;
  const Clock& clock_;
  const Calendar& calendar_;
  ThreadQueue queue_{"com.tessum.mcp-server"};
  std::shared_ptr<HTTPTransport> transport_;  // destroyed first, as it enters all of the above
};

}  // namespace tessum
