// Whom the HTTP transport answers, and within which limits. A transport without an admission
// answers everyone and waits for them without end.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessum {

// Who asks, as far as is known before the body has arrived.
struct HTTPVisitor {
  bool isOnThisComputer = false;  // the connection comes from a loopback address
  std::uint16_t port = 0;         // the one that was connected to
  std::string_view head;  // the request line and the headers as sent, without the empty line
};

struct HTTPAdmission {
  // Why this visitor is refused, in one line without its end; absent when it is admitted. Called on
  // the server queue as soon as a head is complete, before the body arrives. A refused request gets
  // status 403 with the reason, and never reaches the engine.
  std::function<std::optional<std::string>(const HTTPVisitor&)> refusal;

  // How long a request may take to arrive, and its answer to be taken.
  double patienceSeconds = 0;

  // How many connections are held: one more takes the place of the oldest.
  std::size_t mostConnections = 0;

  // How long a head may be; a longer one ends its connection.
  std::size_t mostHeadBytes = 0;
};

}  // namespace tessum
