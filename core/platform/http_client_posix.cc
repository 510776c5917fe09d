// The HTTP client over TessumFetch: a process and a thread that reads from it for each transfer.
//
// Destroying a transfer ends its process and waits for the thread, and so for the event that may be
// under way. The process is not trusted further than the network: what does not look like its parts
// ends the transfer.

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "core/platform/descriptor.h"
#include "core/platform/fetch_parts.h"
#include "core/platform/http_client.h"
#include "core/platform/spawn_posix.h"

namespace tessum {
namespace {

constexpr auto kEndedEarly = "TessumFetch ended unexpectedly";

// A running TessumFetch and what it writes.
class FetchProgram {
 public:
  // Throws std::system_error when it cannot be started.
  explicit FetchProgram(std::vector<std::string> arguments) {
    // Between these steps no second one may be started: it would hold the first one's output open.
    static std::mutex starting;
    const std::lock_guard lock(starting);
    int ends[2];
    if (pipe(ends) != 0) {
      throw std::system_error(errno, std::generic_category(), "Cannot make a pipe");
    }
    output_ = Descriptor(ends[0]);
    const Descriptor input(ends[1]);
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
    process_ = startProgram(std::move(arguments), input.number());
  }

  ~FetchProgram() { end(); }
  FetchProgram(const FetchProgram&) = delete;
  FetchProgram& operator=(const FetchProgram&) = delete;

  // Ends it, at once. Any thread.
  void end() {
    const std::lock_guard lock(mutex_);
    if (process_ == kNone) return;
    kill(process_, SIGKILL);
    waitForProgram(std::exchange(process_, kNone));
  }

  // Reads the next part, whose content is valid until the next call. Throws std::runtime_error
  // when there is none.
  std::pair<FetchPart, std::string_view> read() {
    FetchPartHeader header{};
    readExactly(reinterpret_cast<char*>(&header), sizeof header);
    if (header.size > kLargestFetchPart) throw std::runtime_error(kEndedEarly);
    if (content_.size() < header.size) content_.resize(header.size);
    readExactly(content_.data(), header.size);
    return {header.kind, std::string_view(content_).substr(0, header.size)};
  }

 private:
  static constexpr pid_t kNone = -1;

  void readExactly(char* bytes, std::size_t size) {
    while (size > 0) {
      const ssize_t count = ::read(output_.number(), bytes, size);
      if (count == -1 && errno == EINTR) continue;
      if (count <= 0) throw std::runtime_error(kEndedEarly);
      bytes += count;
      size -= static_cast<std::size_t>(count);
    }
  }

  std::mutex mutex_;
  pid_t process_ = kNone;  // guarded by the mutex
  Descriptor output_;
  std::string content_;
};

class Transfer final : public HttpTransfer {
 public:
  Transfer(std::vector<std::string> arguments, HttpEvents events) : events_(std::move(events)) {
    try {
      program_.emplace(std::move(arguments));
    } catch (const std::system_error& error) {
      startFailure_ = error.what();
    }
    thread_ = std::thread([this] { run(); });
  }

  ~Transfer() override {
    isCancelled_ = true;
    if (program_) program_->end();
    thread_.join();
  }

  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

 private:
  void run() {
    std::optional<std::string> failure = startFailure_;
    if (program_) {
      try {
        failure = receive();
      } catch (const std::exception& error) {
        failure = error.what();
      }
      program_->end();
    }
    if (!isCancelled_) events_.onEnd(head_, failure);
    events_ = {};
  }

  // Gives what TessumFetch says of the end.
  std::optional<std::string> receive() {
    for (;;) {
      const auto [kind, content] = program_->read();
      switch (kind) {
        case FetchPart::url:
          head_.url = content;
          break;
        case FetchPart::contentDisposition:
          head_.contentDisposition = content;
          break;
        case FetchPart::contentLength:
          head_.contentLength = lengthIn(content);
          break;
        case FetchPart::body:
          if (!isCancelled_) events_.onData(head_, content);
          break;
        case FetchPart::failure:
          return std::string(content);
        case FetchPart::success:
          return std::nullopt;
        default:
          throw std::runtime_error(kEndedEarly);
      }
    }
  }

  static std::int64_t lengthIn(std::string_view digits) {
    std::int64_t length = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, length);
    if (stop != end || error != std::errc()) throw std::runtime_error(kEndedEarly);
    return length;
  }

  std::optional<FetchProgram> program_;  // absent when it could not be started
  std::optional<std::string> startFailure_;
  std::atomic<bool> isCancelled_ = false;
  std::thread thread_;

  // The thread's own, once it runs.
  HttpEvents events_;
  HttpHead head_;
};

}  // namespace

FetchProgramClient::FetchProgramClient(Settings settings) : settings_(std::move(settings)) {}

std::unique_ptr<HttpTransfer> FetchProgramClient::get(const std::string& url, HttpEvents events) {
  std::vector<std::string> arguments{settings_.program, url, std::to_string(settings_.idleSeconds)};
  if (settings_.authoritiesFile) arguments.push_back(*settings_.authoritiesFile);
  return std::make_unique<Transfer>(std::move(arguments), std::move(events));
}

}  // namespace tessum
