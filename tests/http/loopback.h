// Plain sockets on the loopback interface, for playing the client.

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessum {

enum class Family { v4, v6 };

// A port of this computer that nobody listens on. It is lower than those that the system gives to
// outgoing connections, so the tests' own connections do not take it.
[[nodiscard]] std::uint16_t freePort();

// Whether anything accepts connections at `port`.
[[nodiscard]] bool isListening(std::uint16_t port, Family family = Family::v4);

// How many descriptors this process has open.
[[nodiscard]] int openDescriptors();

// Lets this process have at least `count` descriptors.
void allowDescriptors(unsigned count);

// One connection to a port. The test fails when nothing arrives for a minute.
class Peer {
 public:
  // Connects, and fails the test when it cannot.
  explicit Peer(std::uint16_t port, Family family = Family::v4);

  // Connects; absent when it cannot.
  [[nodiscard]] static std::optional<Peer> tryConnect(std::uint16_t port,
                                                      Family family = Family::v4);

  ~Peer() { close(); }
  Peer(Peer&& other) noexcept;
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  // Sends all of `bytes`. A server that closes meanwhile is no failure.
  void send(std::string_view bytes);
  void sendByteByByte(std::string_view bytes);

  // Tells the server that nothing more will be sent.
  void endSending();

  // What arrives until the server ends its side. A reset ends it too: see wasReset().
  [[nodiscard]] std::string receiveAll();

  // The next bytes, at most `size`; nothing once the server has ended its side.
  [[nodiscard]] std::string receive(std::size_t size);

  // Whether bytes or the server's end are waiting, now or within `patience`.
  [[nodiscard]] bool hasNews(std::chrono::milliseconds patience = std::chrono::milliseconds(0));

  [[nodiscard]] bool wasReset() const { return wasReset_; }

  void close();

  // Closes the connection with a reset.
  void reset();

 private:
  Peer() = default;

  int descriptor_ = -1;
  bool wasReset_ = false;
};

// Sends `request` and returns the whole answer.
[[nodiscard]] std::string ask(std::uint16_t port, std::string_view request,
                              Family family = Family::v4);

// A message posted to the engine.
[[nodiscard]] std::string postOf(std::string_view body);

// The bytes of an answer.
[[nodiscard]] std::string answerOf(std::string_view statusLine, std::string_view contentType,
                                   std::string_view body);

// The bytes of the answer to a message.
[[nodiscard]] std::string jsonAnswer(std::string_view body);

}  // namespace tessum
