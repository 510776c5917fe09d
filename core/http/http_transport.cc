#include "core/http/http_transport.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <future>
#include <utility>
#include <vector>

#include "core/http/http_connection.h"
#include "core/http/http_listener.h"

namespace tessum {

struct HTTPTransport::State {
  explicit State(SerialQueue& serialQueue)
      : queue(serialQueue), context(1), work(context.get_executor()) {}

  // Runs `task` on the queue and returns what it returns, or throws what it throws.
  template <typename Task>
  auto onQueue(Task task) {
    if (queue.isCurrent()) return task();
    std::packaged_task<decltype(task())()> packaged(std::move(task));
    // The queue no longer holds an exception when it is thrown here: no two threads share it.
    const auto hasRun = std::make_shared<std::promise<void>>();
    asio::post(context, [&packaged, hasRun] {
      packaged();
      hasRun->set_value();
    });
    hasRun->get_future().get();
    return packaged.get_future().get();
  }

  void listen(std::uint16_t port, std::optional<HTTPAdmission> admission) {
    const auto next =
        std::make_shared<HTTPListener>(context, [shared = service](asio::ip::tcp::socket socket) {
          std::make_shared<HTTPConnection>(std::move(socket), shared)->start();
        });
    stop();  // only now: the old listener stays when there can be no new one
    listener = next;
    service->admission =
        admission ? std::make_shared<const HTTPAdmission>(std::move(*admission)) : nullptr;
    listener->listen(port);
  }

  void stop() {
    if (listener) listener->close();
    listener.reset();
  }

  // Leaves nothing that keeps the loop running for more than a second.
  void shutDown() {
    stop();
    service->handleBody = nullptr;
    std::vector<std::shared_ptr<HTTPConnection>> connections;
    for (const auto& [number, connection] : service->connections) {
      connections.push_back(connection->shared_from_this());
    }
    for (const auto& connection : connections) connection->serverIsGone();
    work.reset();
  }

  SerialQueue& queue;
  const std::shared_ptr<HTTPService> service = std::make_shared<HTTPService>();
  asio::io_context context;
  asio::executor_work_guard<asio::io_context::executor_type> work;
  std::shared_ptr<HTTPListener> listener;
};

HTTPTransport::HTTPTransport(SerialQueue& queue, HandleBody handleBody)
    : state_(std::make_shared<State>(queue)) {
  state_->service->handleBody = std::move(handleBody);
  queue.post([state = state_] { state->context.run(); });
}

HTTPTransport::~HTTPTransport() {
  state_->onQueue([this] { state_->shutDown(); });
}

void HTTPTransport::listen(std::uint16_t port, std::optional<HTTPAdmission> admission) {
  state_->onQueue([&] { state_->listen(port, std::move(admission)); });
}

void HTTPTransport::stop() {
  state_->onQueue([this] { state_->stop(); });
}

std::error_code HTTPTransport::listeningError() const {
  return state_->onQueue([this]() -> std::error_code {
    if (!state_->listener) return {};
    return state_->listener->error();
  });
}

}  // namespace tessum
