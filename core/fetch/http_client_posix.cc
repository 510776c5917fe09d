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

#include "core/fetch/fetch_parts.h"
#include "core/fetch/http_client.h"
#include "core/platform/descriptor.h"
#include "core/platform/spawn.h"

namespace tessum {
namespace {

constexpr auto kEndedEarly = "TessumFetch ended unexpectedly";

// A pipe into which another program writes.
struct Pipe {
  Pipe() {
    int ends[2];
    if (pipe(ends) != 0) {
      throw std::system_error(errno, std::generic_category(), "Cannot make a pipe");
    }
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
    output = Descriptor(ends[0]);
    input = Descriptor(ends[1]);
  }

  Descriptor output;
  Descriptor input;
};

// A running TessumFetch.
class FetchProgram {
 public:
  // The body goes to `file`, or to readBody() if that is -1. Throws std::system_error when the
  // program cannot be started.
  FetchProgram(std::vector<std::string> command, int file) {
    // One at a time: a program started between these steps would hold the pipes open.
    static std::mutex starting;
    const std::lock_guard lock(starting);
    Pipe parts;
    std::optional<Pipe> body;
    if (file == -1) body.emplace();
    process_ =
        startProgram(std::move(command), body ? body->input.number() : file, parts.input.number());
    parts_ = std::move(parts.output);
    if (body) body_ = std::move(body->output);
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

  // The next part and its content. What is read is valid until the next call. Throws
  // std::runtime_error when there is none.
  std::pair<FetchPart, std::string_view> readPart() {
    FetchPartHeader header{};
    readExactly(parts_, reinterpret_cast<char*>(&header), sizeof header);
    return {header.kind, readText(parts_, header.size)};
  }

  // The next `size` bytes of the body; likewise.
  std::string_view readBody(std::int64_t size) {
    return readText(body_, static_cast<std::size_t>(size));
  }

 private:
  static constexpr pid_t kNone = -1;

  std::string_view readText(const Descriptor& source, std::size_t size) {
    if (size > kLargestFetchPart) throw std::runtime_error(kEndedEarly);
    if (text_.size() < size) text_.resize(size);
    readExactly(source, text_.data(), size);
    return std::string_view(text_).substr(0, size);
  }

  static void readExactly(const Descriptor& source, char* bytes, std::size_t size) {
    while (size > 0) {
      const ssize_t count = read(source.number(), bytes, size);
      if (count == -1 && errno == EINTR) continue;
      if (count <= 0) throw std::runtime_error(kEndedEarly);
      bytes += count;
      size -= static_cast<std::size_t>(count);
    }
  }

  std::mutex mutex_;
  pid_t process_ = kNone;  // guarded by the mutex
  Descriptor parts_;
  Descriptor body_;  // none when the body goes to a file
  std::string text_;
};

class Transfer final : public HttpTransfer {
 public:
  Transfer(std::vector<std::string> command, int file, HttpEvents events)
      : events_(std::move(events)) {
    try {
      program_.emplace(std::move(command), file);
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
    while (!isCancelled_) {
      const auto [kind, content] = program_->readPart();
      switch (kind) {
        case FetchPart::url:
          head_.url = content;
          break;
        case FetchPart::contentDisposition:
          head_.contentDisposition = content;
          break;
        case FetchPart::contentLength:
          head_.contentLength = numberIn(content);
          break;
        case FetchPart::body:
          receiveBody(numberIn(content));
          break;
        case FetchPart::written:
          if (events_.onProgress) events_.onProgress(head_, received_);
          break;
        case FetchPart::failure:
          return std::string(content);
        case FetchPart::success:
          return std::nullopt;
        default:
          throw std::runtime_error(kEndedEarly);
      }
    }
    return std::nullopt;
  }

  void receiveBody(std::int64_t size) {
    received_ += size;
    if (!events_.onData) return;
    const std::string_view bytes = program_->readBody(size);
    if (!isCancelled_) events_.onData(head_, bytes);
  }

  static std::int64_t numberIn(std::string_view digits) {
    std::int64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (stop != end || error != std::errc() || number < 0) throw std::runtime_error(kEndedEarly);
    return number;
  }

  std::optional<FetchProgram> program_;  // absent when it could not be started
  std::optional<std::string> startFailure_;
  std::atomic<bool> isCancelled_ = false;
  std::thread thread_;

  // The thread's own, once it runs.
  HttpEvents events_;
  HttpHead head_;
  std::int64_t received_ = 0;
};

}  // namespace

FetchProgramClient::FetchProgramClient(Settings settings) : settings_(std::move(settings)) {}

std::unique_ptr<HttpTransfer> FetchProgramClient::get(const std::string& url, HttpEvents events) {
  constexpr int kNoFile = -1;
  return std::make_unique<Transfer>(commandFor(url), kNoFile, std::move(events));
}

std::unique_ptr<HttpTransfer> FetchProgramClient::download(const std::string& url, int file,
                                                           HttpEvents events) {
  return std::make_unique<Transfer>(commandFor(url), file, std::move(events));
}

std::vector<std::string> FetchProgramClient::commandFor(const std::string& url) const {
  std::vector<std::string> command{settings_.program, url, std::to_string(settings_.idleSeconds)};
  if (settings_.authoritiesFile) command.push_back(*settings_.authoritiesFile);
  return command;
}

}  // namespace tessum
