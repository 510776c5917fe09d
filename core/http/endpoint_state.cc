#include "core/http/endpoint_state.h"

#include <asio/ip/tcp.hpp>
#include <chrono>
#include <string>

#include "core/base/limits.h"
#include "core/http/http_response.h"

namespace tessum {
namespace {

constexpr auto kPatience = std::chrono::seconds(2);

// Asks for the greeting, and names the host as the endpoint wants it.
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
    if (line == kGreeting) return EndpointState::answers;
  }
  return EndpointState::taken;
}

}  // namespace tessum
