// The HTTP part of MCPServer, which programs without HTTP do not link.

#include <optional>
#include <string>

#include "core/http/endpoint_url.h"
#include "core/http/http_transport.h"
#include "core/mcp/mcp_server.h"

namespace tessum {

void MCPServer::start() {
  startFor(nullptr);
}

void MCPServer::start(const HTTPAdmission& admission) {
  startFor(&admission);
}

void MCPServer::startFor(const HTTPAdmission* admission) {
  if (port_ == 0) throw MCPServerError::invalidPort(port_);
  if (!transport_) {
    transport_ = std::make_shared<HTTPTransport>(
        queue_, [this](json::PaddedView body) { return handleBody(body); });
  }
  transport_->listen(port_, admission ? std::optional(*admission) : std::nullopt);
}

void MCPServer::stop() {
  if (transport_) transport_->stop();
}

std::error_code MCPServer::listeningError() const {
  return transport_ ? transport_->listeningError() : std::error_code();
}

std::string MCPServer::endpointURL() const {
  return tessum::endpointURL(port_);
}

}  // namespace tessum
