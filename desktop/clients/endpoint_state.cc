#include "desktop/clients/endpoint_state.h"

#include <asio/ip/tcp.hpp>
#include <chrono>
#include <string_view>

#include "core/base/limits.h"
#include "core/http/endpoint_url.h"

namespace tessum {
namespace {

// The name with which our server answers.
constexpr std::string_view kSelfDescription = "Tessum MCP Server";
constexpr auto kPatience = std::chrono::seconds(2);

// Asks for that description, and names the host as the endpoint wants it.
std::string request() {
  return "GET / HTTP/1.1\r\nHost: localhost:" + std::to_string(limits::kDefaultPort) +
         "\r\nConnection: close\r\n\r\n";
}

}  // namespace

EndpointState endpointState() {
  asio::ip::tcp::iostream stream;
  stream.expires_after(kPatience);
  stream.connect("localhost", std::to_string(limits::kDefaultPort));
  if (!stream) return EndpointState::silent;
  stream << request() << std::flush;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(kSelfDescription)) return EndpointState::answers;
  }
  return EndpointState::taken;
}

std::string usualEndpointURL() {
  return endpointURL(limits::kDefaultPort);
}

}  // namespace tessum
