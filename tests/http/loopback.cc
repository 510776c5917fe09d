#include "tests/http/loopback.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace tessum {
namespace {

constexpr int kPatience = 60;  // seconds

#ifdef MSG_NOSIGNAL
constexpr int kNoSignal = MSG_NOSIGNAL;
#else
constexpr int kNoSignal = 0;
#endif

int newSocket(Family family) {
  const int made = socket(family == Family::v4 ? AF_INET : AF_INET6, SOCK_STREAM, 0);
  if (made == -1) return -1;
  fcntl(made, F_SETFD, FD_CLOEXEC);
#ifdef SO_NOSIGPIPE
  const int on = 1;
  setsockopt(made, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
  const timeval patience{kPatience, 0};
  setsockopt(made, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  setsockopt(made, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  return made;
}

// Calls `use` with the loopback address of `family` and its size.
template <typename Use>
int withAddress(Family family, std::uint16_t port, Use use) {
  if (family == Family::v4) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return use(reinterpret_cast<const sockaddr*>(&address), socklen_t{sizeof address});
  }
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_port = htons(port);
  address.sin6_addr = in6addr_loopback;
  return use(reinterpret_cast<const sockaddr*>(&address), socklen_t{sizeof address});
}

bool canConnect(int descriptor, std::uint16_t port, Family family) {
  return withAddress(family, port, [&](const sockaddr* address, socklen_t size) {
           return connect(descriptor, address, size);
         }) == 0;
}

bool canBind(std::uint16_t port) {
  const int probe = newSocket(Family::v4);
  const int on = 1;
  setsockopt(probe, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const int result = withAddress(Family::v4, port, [&](const sockaddr* address, socklen_t size) {
    return bind(probe, address, size);
  });
  ::close(probe);
  return result == 0;
}

}  // namespace

std::uint16_t freePort() {
  // Test programs run side by side: each looks in another place.
  constexpr unsigned kFirst = 12000;
  constexpr unsigned kCount = 20000;
  static unsigned next = static_cast<unsigned>(getpid()) * 37;
  for (unsigned tries = 0; tries < kCount; ++tries) {
    const auto port = static_cast<std::uint16_t>(kFirst + next++ % kCount);
    if (!isListening(port) && !isListening(port, Family::v6) && canBind(port)) return port;
  }
  ADD_FAILURE() << "no port is free";
  return 0;
}

bool isListening(std::uint16_t port, Family family) {
  return Peer::tryConnect(port, family).has_value();
}

int openDescriptors() {
  int count = 0;
  for (int descriptor = 0; descriptor < 4096; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) ++count;
  }
  return count;
}

void allowDescriptors(unsigned count) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_cur >= count) return;
  limit.rlim_cur = count;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0) << std::strerror(errno);
}

Peer::Peer(std::uint16_t port, Family family) : descriptor_(newSocket(family)) {
  if (!canConnect(descriptor_, port, family)) {
    ADD_FAILURE() << "connecting to port " << port << ": " << std::strerror(errno);
  }
}

std::optional<Peer> Peer::tryConnect(std::uint16_t port, Family family) {
  Peer peer;
  peer.descriptor_ = newSocket(family);
  if (!canConnect(peer.descriptor_, port, family)) return std::nullopt;
  return peer;
}

Peer::Peer(Peer&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), wasReset_(other.wasReset_) {}

void Peer::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::send(descriptor_, bytes.data(), bytes.size(), kNoSignal);
    if (count == -1 && errno == EINTR) continue;
    if (count == -1) return;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void Peer::sendByteByByte(std::string_view bytes) {
  for (const char& byte : bytes) send({&byte, 1});
}

void Peer::endSending() {
  shutdown(descriptor_, SHUT_WR);
}

std::string Peer::receiveAll() {
  std::string all;
  for (std::string part = receive(65536); !part.empty(); part = receive(65536)) all += part;
  return all;
}

std::string Peer::receive(std::size_t size) {
  std::string bytes(size, '\0');
  for (;;) {
    const ssize_t count = recv(descriptor_, bytes.data(), size, 0);
    if (count >= 0) {
      bytes.resize(static_cast<std::size_t>(count));
      return bytes;
    }
    if (errno == EINTR) continue;
    wasReset_ = errno == ECONNRESET;
    if (!wasReset_) ADD_FAILURE() << "receiving: " << std::strerror(errno);
    return {};
  }
}

bool Peer::hasNews(std::chrono::milliseconds patience) {
  pollfd waiting{descriptor_, POLLIN, 0};
  return poll(&waiting, 1, static_cast<int>(patience.count())) == 1;
}

void Peer::close() {
  if (descriptor_ != -1) ::close(std::exchange(descriptor_, -1));
}

void Peer::reset() {
  const linger now{1, 0};
  setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  close();
}

std::string ask(std::uint16_t port, std::string_view request, Family family) {
  Peer peer(port, family);
  peer.send(request);
  std::string answer = peer.receiveAll();
  EXPECT_FALSE(peer.wasReset());
  return answer;
}

std::string postOf(std::string_view body) {
  return "POST /mcp HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + std::string(body);
}

std::string answerOf(std::string_view statusLine, std::string_view contentType,
                     std::string_view body) {
  std::string answer(statusLine);
  answer += "\r\nContent-Type: ";
  answer += contentType;
  answer += "; charset=utf-8\r\nContent-Length: " + std::to_string(body.size());
  answer += "\r\nAccess-Control-Allow-Origin: *\r\n";
  answer += "Access-Control-Allow-Methods: POST, GET, OPTIONS\r\n";
  answer += "Access-Control-Allow-Headers: Content-Type\r\n";
  answer += "Connection: close\r\n\r\n";
  answer += body;
  return answer;
}

std::string jsonAnswer(std::string_view body) {
  return answerOf("HTTP/1.1 200 OK", "application/json", body);
}

}  // namespace tessum
