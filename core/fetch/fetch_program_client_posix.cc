// A transfer is a process and a pipe that the main loop watches. Destroying the transfer kills the
// process. The process is trusted no further than the network: a transfer whose process writes
// anything but its parts fails.

#include "core/fetch/fetch_program_client.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "core/fetch/fetch_part_reader.h"
#include "core/platform/descriptor.h"
#include "core/platform/spawn.h"

namespace tessum {
namespace {

constexpr double kLongestGet = 3600;        // seconds; an hour
constexpr double kLongestDownload = 86400;  // seconds; a day
constexpr int kNoFile = -1;
constexpr pid_t kNoProcess = -1;

// What a transfer is to do.
struct Order {
  std::vector<std::string> command;
  int file = kNoFile;         // the descriptor for the body; without one it is part of the result
  std::size_t mostBytes = 0;  // of a body that is part of the result
  double mostSeconds = 0;
};

class FetchTransfer final : public HttpTransfer {
 public:
  FetchTransfer(MainLoop& loop, Order order, HttpClient::OnProgress onProgress,
                HttpClient::OnEnd onEnd)
      : loop_(loop),
        order_(std::move(order)),
        onProgress_(std::move(onProgress)),
        onEnd_(std::move(onEnd)),
        reader_(order_.file == kNoFile ? FetchPartReader::Body::amongTheParts
                                       : FetchPartReader::Body::elsewhere) {
    try {
      start();
    } catch (const std::exception& error) {
      loop_.post([this, alive = std::weak_ptr(alive_), failure = std::string(error.what())] {
        if (!alive.expired()) finish(failure);
      });
    }
  }

  ~FetchTransfer() override { stop(); }
  FetchTransfer(const FetchTransfer&) = delete;
  FetchTransfer& operator=(const FetchTransfer&) = delete;

 private:
  // How the process says that the transfer ended.
  struct End {
    std::optional<std::string> failure;
  };

  void start() {
    if (!order_.command.front().starts_with('/')) {
      throw std::runtime_error("TessumFetch cannot be found");
    }
    Pipe pipe;
    fcntl(pipe.readEnd.number(), F_SETFL, O_NONBLOCK);
    const int input = pipe.writeEnd.number();
    const int body = order_.file == kNoFile ? input : order_.file;
    process_ = startProgram(order_.command, {.output = body, .errors = input});
    output_ = std::move(pipe.readEnd);
    watch_ = loop_.watchReadable(output_.number(), [this] { receive(); });
    limit_ = loop_.startTimer(order_.mostSeconds, [this] { finish("The transfer took too long"); });
  }

  void stop() {
    loop_.invalidateTimer(limit_);
    loop_.unwatch(watch_);
    output_ = Descriptor();
    if (process_ == kNoProcess) return;
    kill(process_, SIGKILL);
    waitForProgram(std::exchange(process_, kNoProcess));
  }

  // This comes last: the callback may destroy this object.
  void finish(std::optional<std::string> failure) {
    stop();
    onProgress_ = nullptr;
    const auto onEnd = std::exchange(onEnd_, nullptr);
    onEnd({std::move(head_), std::move(body_), std::move(failure)});
  }

  void receive() {
    std::optional<End> end;
    try {
      if (!readPipe()) end = End{"TessumFetch ended unexpectedly"};
      while (!end) {
        const auto part = reader_.next();
        if (!part) return;
        end = take(*part);
      }
    } catch (const BadFetchPart& error) {
      end = End{error.what()};
    }
    finish(std::move(end->failure));
  }

  // Reads what is in the pipe, or much of it. False at its end.
  bool readPipe() {
    char buffer[65536];
    const ssize_t count = read(output_.number(), buffer, sizeof buffer);
    if (count == -1) return errno == EAGAIN || errno == EINTR;
    reader_.add({buffer, static_cast<std::size_t>(count)});
    return count > 0;
  }

  std::optional<End> take(const FetchPartReader::Part& part) {
    switch (part.kind) {
      case FetchPart::url:
        head_.url = part.content;
        break;
      case FetchPart::contentDisposition:
        head_.contentDisposition = part.content;
        break;
      case FetchPart::contentLength:
        head_.contentLength = numberIn(part.content);
        break;
      case FetchPart::body:
        return takeBody(part);
      case FetchPart::written:
        if (onProgress_) onProgress_(head_, received_);
        break;
      case FetchPart::failure:
        return End{std::string(part.content)};
      case FetchPart::success:
        return End{};
    }
    return std::nullopt;
  }

  std::optional<End> takeBody(const FetchPartReader::Part& part) {
    if (part.size > std::numeric_limits<std::int64_t>::max() - received_) {
      return End{"The answer is too long"};
    }
    received_ += part.size;
    if (order_.file != kNoFile) return std::nullopt;
    if (part.content.size() > order_.mostBytes - body_.size()) {
      return End{"The answer is longer than " + std::to_string(order_.mostBytes) + " bytes"};
    }
    body_ += part.content;
    return std::nullopt;
  }

  static std::int64_t numberIn(std::string_view digits) {
    std::int64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (stop != end || error != std::errc() || number < 0) throw BadFetchPart();
    return number;
  }

  MainLoop& loop_;
  const Order order_;
  HttpClient::OnProgress onProgress_;
  HttpClient::OnEnd onEnd_;
  pid_t process_ = kNoProcess;
  Descriptor output_;
  MainLoop::WatchToken watch_{};
  MainLoop::TimerToken limit_{};
  FetchPartReader reader_;
  HttpHead head_;
  std::string body_;
  std::int64_t received_ = 0;
  const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace

FetchProgramClient::FetchProgramClient(MainLoop& loop, Settings settings)
    : loop_(loop), settings_(std::move(settings)) {}

std::unique_ptr<HttpTransfer> FetchProgramClient::get(const std::string& url, std::size_t mostBytes,
                                                      OnEnd onEnd) {
  return std::make_unique<FetchTransfer>(
      loop_, Order{.command = commandFor(url), .mostBytes = mostBytes, .mostSeconds = kLongestGet},
      nullptr, std::move(onEnd));
}

std::unique_ptr<HttpTransfer> FetchProgramClient::download(const std::string& url, int file,
                                                           OnProgress onProgress, OnEnd onEnd) {
  return std::make_unique<FetchTransfer>(
      loop_, Order{.command = commandFor(url), .file = file, .mostSeconds = kLongestDownload},
      std::move(onProgress), std::move(onEnd));
}

std::vector<std::string> FetchProgramClient::commandFor(const std::string& url) const {
  std::vector<std::string> command{settings_.program, url, std::to_string(settings_.idleSeconds)};
  if (settings_.authoritiesFile) command.push_back(*settings_.authoritiesFile);
  return command;
}

}  // namespace tessum
