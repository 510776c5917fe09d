#include "tests/support/https/https_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <list>
#include <mutex>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "tests/support/https/openssl_free.h"

namespace tessum {
namespace {

using Context = std::unique_ptr<SSL_CTX, OpenSSLFree>;
using Bio = std::unique_ptr<BIO, OpenSSLFree>;

Bio reading(const std::string& text) {
  return Bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

Context contextFor(const ThrowAwayAuthority::Identity& identity) {
  Context context(SSL_CTX_new(TLS_server_method()));
  const std::unique_ptr<X509, OpenSSLFree> certificate(
      PEM_read_bio_X509(reading(identity.certificate).get(), nullptr, nullptr, nullptr));
  const std::unique_ptr<EVP_PKEY, OpenSSLFree> key(
      PEM_read_bio_PrivateKey(reading(identity.key).get(), nullptr, nullptr, nullptr));
  if (SSL_CTX_use_certificate(context.get(), certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) {
    throw std::runtime_error("the server cannot use its certificate");
  }
  return context;
}

// A socket bound to a free port of the loopback interface.
int boundSocket() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "bind");
  }
  return socket;
}

sockaddr_in addressOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return address;
}

std::string hostOf(int socket) {
  return "127.0.0.1:" + std::to_string(ntohs(addressOf(socket).sin_port));
}

std::string urlOf(int socket) {
  return "https://" + hostOf(socket);
}

// For a client that uses this server as its proxy: accepts, and connects it to this server.
void answerAsProxy(int socket) {
  constexpr std::string_view kMethod = "CONNECT ";
  char start[kMethod.size()] = {};
  const auto peeked = recv(socket, start, sizeof start, MSG_PEEK | MSG_WAITALL);
  if (peeked != sizeof start || std::string_view(start, sizeof start) != kMethod) return;
  std::string request;
  for (char byte = 0; !request.ends_with("\r\n\r\n") && read(socket, &byte, 1) == 1;) {
    request += byte;
  }
  constexpr std::string_view kAnswer = "HTTP/1.1 200 OK\r\n\r\n";
  [[maybe_unused]] const auto written = write(socket, kAnswer.data(), kAnswer.size());
}

// Not on every system does a shutdown end the wait for clients; one more client always does.
void wakeAccepting(int listener) {
  const sockaddr_in address = addressOf(listener);
  const int client = ::socket(AF_INET, SOCK_STREAM, 0);
  connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  close(client);
}

// A client that disconnects must not end the test program. Other threads keep the signal, so that
// the code under test has to handle it.
void ignoreBrokenPipes() {
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
}

class Connection final : public HttpsConnection {
 public:
  Connection(SSL_CTX* context, int socket) : ssl_(SSL_new(context)), socket_(socket) {
    SSL_set_fd(ssl_.get(), socket);
  }

  // False if the client rejects the certificate or disconnects early.
  bool readRequest() {
    if (SSL_accept(ssl_.get()) != 1) return false;
    while (!request_.ends_with("\r\n\r\n")) {
      char byte = 0;
      if (SSL_read(ssl_.get(), &byte, 1) != 1) return false;
      request_ += byte;
    }
    return true;
  }

  void close() {
    if (!isCut_) SSL_shutdown(ssl_.get());
  }

  [[nodiscard]] const std::string& request() const override { return request_; }

  bool send(std::string_view bytes) override {
    return bytes.empty() || SSL_write(ssl_.get(), bytes.data(), static_cast<int>(bytes.size())) > 0;
  }

  void cut() override {
    isCut_ = true;
    shutdown(socket_, SHUT_RDWR);
  }

  void waitUntilClosed() override {
    char byte = 0;
    while (SSL_read(ssl_.get(), &byte, 1) > 0) {
    }
  }

 private:
  const std::unique_ptr<SSL, OpenSSLFree> ssl_;
  const int socket_;
  std::string request_;
  bool isCut_ = false;
};

std::string pathOf(const std::string& request) {
  const auto start = request.find(' ') + 1;
  return request.substr(start, request.find(' ', start) - start);
}

}  // namespace

bool HttpsConnection::respond(std::string_view body, std::string_view headers,
                              std::string_view status) {
  std::string answer = "HTTP/1.1 ";
  answer.append(status).append("\r\n").append(headers);
  answer += "Connection: close\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  return send(answer) && send(body);
}

struct HttpsServer::State {
  State(Context serverContext, Answer serverAnswer)
      : context(std::move(serverContext)), answer(std::move(serverAnswer)) {}

  const Context context;
  const Answer answer;
  int listener = boundSocket();
  std::mutex mutex;  // guards the next four
  bool isStopping = false;
  std::set<int> sockets;
  std::list<std::thread> threads;
  std::vector<std::string> paths;
  std::thread accepting;

  void acceptAll() {
    while (true) {
      const int socket = accept(listener, nullptr, nullptr);
      if (socket == -1) return;
      const std::lock_guard lock(mutex);
      if (isStopping) {
        close(socket);
        return;
      }
      sockets.insert(socket);
      threads.emplace_back([this, socket] { serve(socket); });
    }
  }

  void serve(int socket) {
    ignoreBrokenPipes();
    answerAsProxy(socket);
    {
      Connection connection(context.get(), socket);
      if (connection.readRequest()) {
        {
          const std::lock_guard lock(mutex);
          paths.push_back(pathOf(connection.request()));
        }
        answer(connection);
        connection.close();
      }
    }
    const std::lock_guard lock(mutex);
    sockets.erase(socket);
    close(socket);
  }
};

HttpsServer::HttpsServer(const ThrowAwayAuthority::Identity& identity, Answer answer)
    : state_(std::make_unique<State>(contextFor(identity), std::move(answer))) {
  listen(state_->listener, SOMAXCONN);
  state_->accepting = std::thread([this] { state_->acceptAll(); });
}

HttpsServer::~HttpsServer() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->isStopping = true;
    for (const int socket : state_->sockets) shutdown(socket, SHUT_RDWR);
  }
  wakeAccepting(state_->listener);
  state_->accepting.join();
  for (auto& thread : state_->threads) thread.join();
  close(state_->listener);
}

std::string HttpsServer::url() const {
  return urlOf(state_->listener);
}

std::string HttpsServer::proxyUrl() const {
  return "http://" + hostOf(state_->listener);
}

std::vector<std::string> HttpsServer::paths() const {
  const std::lock_guard lock(state_->mutex);
  return state_->paths;
}

std::string unreachableUrl() {
  // Bound until the process ends, but not listening, so that nobody else gets the port.
  static const std::string url = urlOf(boundSocket());
  return url;
}

}  // namespace tessum
