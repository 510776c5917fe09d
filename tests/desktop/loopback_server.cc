#include "tests/desktop/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace tessum {
namespace {

void answer(int connection, const std::string& bytes) {
  std::string request;
  char buffer[1024];
  while (request.find("\r\n\r\n") == std::string::npos) {
    const auto count = read(connection, buffer, sizeof buffer);
    if (count <= 0) return;
    request.append(buffer, static_cast<std::size_t>(count));
  }
  [[maybe_unused]] const auto written = write(connection, bytes.data(), bytes.size());
}

}  // namespace

LoopbackServer::LoopbackServer(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
  const int isReused = 1;  // allow the port of a test that has just ended
  setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &isReused, sizeof isReused);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  isBound_ = bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

LoopbackServer::~LoopbackServer() {
  isDone_ = true;
  if (thread_.joinable()) thread_.join();
  close(socket_);
}

void LoopbackServer::answerWith(std::string bytes) {
  listen(socket_, 8);
  thread_ = std::thread([this, bytes = std::move(bytes)] {
    while (!isDone_) {
      pollfd waiting{socket_, POLLIN, 0};
      constexpr int kMilliseconds = 20;
      if (poll(&waiting, 1, kMilliseconds) <= 0) continue;
      const int connection = accept(socket_, nullptr, nullptr);
      answer(connection, bytes);
      close(connection);
    }
  });
}

}  // namespace tessum
