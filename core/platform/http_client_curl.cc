// The HTTP client over libcurl's multi interface: one thread turns the transfers of all callers.
//
// Only that thread touches libcurl, but for curl_multi_wakeup(). A transfer is shared between its
// owner and the thread; its mutex is held while an event runs, so that an owner who lets go of it
// waits for that one call, and no other follows.
//
// libcurl hands out a body in records of TLS, 16 KiB at most. What comes without a pause is
// gathered and handed on in larger pieces, since each may wake other threads.

#include <curl/curl.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "core/base/check.h"
#include "core/platform/http_client.h"

namespace tessum {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr long kMostRedirects = 20;
constexpr std::size_t kLargestPiece = std::size_t{256} << 10;

struct MultiCloser {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using Multi = std::unique_ptr<CURLM, MultiCloser>;

struct EasyCloser {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
using Easy = std::unique_ptr<CURL, EasyCloser>;

template <typename T>
void set(CURL* easy, CURLoption option, T value) {
  TESSUM_CHECK(curl_easy_setopt(easy, option, value) == CURLE_OK, "libcurl lacks an option");
}

// The text forms of these options, which replace them, are unknown to the libcurl of macOS 13.0.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void allowOnlyHttps(CURL* easy) {
  set(easy, CURLOPT_PROTOCOLS, long{CURLPROTO_HTTPS});
  set(easy, CURLOPT_REDIR_PROTOCOLS, long{CURLPROTO_HTTPS});
}
#pragma GCC diagnostic pop

// A transfer given up while a name is looked up must not wait for the answer. Libraries that do
// not know the option do wait.
void doNotWaitForNames(CURL* easy) {
#if CURL_AT_LEAST_VERSION(7, 87, 0)
  static_cast<void>(curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L));
#else
  static_cast<void>(easy);
#endif
}

// The thread must see no signals: they are the main thread's, and SIGPIPE, which a broken
// connection raises, is nobody's. Threads inherit the mask of the one that makes them.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

// One transfer as the client's thread sees it.
class Transfer {
 public:
  Transfer(std::string url, HttpEvents events) : url_(std::move(url)), events_(std::move(events)) {}

  // Ends the events; see HttpTransfer.
  void cancel() {
    const std::lock_guard lock(mutex_);
    isCancelled_ = true;
    events_ = {};
  }

  [[nodiscard]] bool isCancelled() const { return isCancelled_; }

  // The rest belongs to the client's thread.

  CURL* start(const CurlHttpClient::Settings& settings) {
    easy_.reset(curl_easy_init());
    TESSUM_CHECK(easy_ != nullptr, "libcurl gives no handle");
    CURL* const easy = easy_.get();
    set(easy, CURLOPT_URL, url_.c_str());
    allowOnlyHttps(easy);
    set(easy, CURLOPT_FOLLOWLOCATION, 1L);
    set(easy, CURLOPT_MAXREDIRS, kMostRedirects);
    set(easy, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(easy, CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    set(easy, CURLOPT_NOSIGNAL, 1L);
    if (settings.authoritiesFile) {
      set(easy, CURLOPT_CAINFO, settings.authoritiesFile->c_str());
      set(easy, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    doNotWaitForNames(easy);
    set(easy, CURLOPT_PRIVATE, static_cast<void*>(this));
    set(easy, CURLOPT_HEADERFUNCTION, &Transfer::receiveHeader);
    set(easy, CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(easy, CURLOPT_WRITEFUNCTION, &Transfer::receiveBody);
    set(easy, CURLOPT_WRITEDATA, static_cast<void*>(this));
    lastActivity_ = SteadyClock::now();
    return easy;
  }

  [[nodiscard]] CURL* easy() const { return easy_.get(); }
  [[nodiscard]] SteadyClock::time_point lastActivity() const { return lastActivity_; }

  void end(CURLcode result) {
    // An answer that breaks off within its headers is an empty one to libcurl.
    if (result == CURLE_OK && !hasHeaders_) result = CURLE_PARTIAL_FILE;
    if (!handOn() && result == CURLE_OK) result = CURLE_WRITE_ERROR;
    std::optional<std::string> failure;
    if (result != CURLE_OK) failure = thrown_ ? *thrown_ : curl_easy_strerror(result);
    const std::lock_guard lock(mutex_);
    if (!isCancelled_) events_.onEnd(head(), failure);
    events_ = {};
  }

  [[nodiscard]] bool hasGathered() const { return !gathered_.empty(); }

  // Hands on what was gathered. Whether the transfer is to go on.
  bool handOn() {
    const std::lock_guard lock(mutex_);
    if (isCancelled_ || thrown_) return false;
    if (gathered_.empty()) return true;
    try {
      events_.onData(head(), gathered_);
      gathered_.clear();
      lastActivity_ = SteadyClock::now();  // now, as the event may have waited for the disk
      return true;
    } catch (const std::exception& error) {  // libcurl is C: nothing may be thrown through it
      thrown_ = error.what();
      return false;
    }
  }

  // Gives the handle back, which the multi handle must no longer know.
  void close() { easy_.reset(); }

 private:
  // Called with each line, the empty one behind the headers included; those that may follow a
  // body have no such end.
  static std::size_t receiveHeader(char* line, std::size_t size, std::size_t count, void* self) {
    auto* const transfer = static_cast<Transfer*>(self);
    transfer->lastActivity_ = SteadyClock::now();
    const std::string_view text(line, size * count);
    if (text.starts_with("HTTP/")) transfer->hasHeaders_ = false;
    if (text == "\r\n" || text == "\n") transfer->hasHeaders_ = true;
    return text.size();
  }

  static std::size_t receiveBody(char* bytes, std::size_t size, std::size_t count, void* self) {
    const std::string_view received(bytes, size * count);
    return static_cast<Transfer*>(self)->receive(received) ? received.size() : 0;
  }

  // Whether the transfer is to go on.
  bool receive(std::string_view bytes) {
    lastActivity_ = SteadyClock::now();
    gathered_.append(bytes);
    return gathered_.size() < kLargestPiece || handOn();
  }

  const HttpHead& head() {
    if (head_) return *head_;
    head_.emplace();
    const char* url = nullptr;
    if (curl_easy_getinfo(easy_.get(), CURLINFO_EFFECTIVE_URL, &url) == CURLE_OK &&
        url != nullptr) {
      head_->url = url;
    }
    curl_header* header = nullptr;
    constexpr int kLastAnswer = -1;
    if (curl_easy_header(easy_.get(), "Content-Disposition", 0, CURLH_HEADER, kLastAnswer,
                         &header) == CURLHE_OK) {
      head_->contentDisposition = header->value;
    }
    curl_off_t length = -1;
    if (curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length) == CURLE_OK &&
        length >= 0) {
      head_->contentLength = length;
    }
    return *head_;
  }

  const std::string url_;
  std::mutex mutex_;  // held while an event runs
  HttpEvents events_;
  std::atomic<bool> isCancelled_ = false;

  Easy easy_;
  SteadyClock::time_point lastActivity_;
  bool hasHeaders_ = false;            // whether those of the last answer are complete
  std::string gathered_;               // of the body, not handed on yet
  std::optional<std::string> thrown_;  // by onData
  std::optional<HttpHead> head_;       // known once the body begins
};

}  // namespace

// The thread and what it shares with the callers.
class CurlHttpClient::Loop {
 public:
  explicit Loop(Settings settings) : settings_(std::move(settings)) {
    // The library counts these calls; the first one must be over before any other is made.
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    TESSUM_CHECK(ready == CURLE_OK, "libcurl cannot be used");
    multi_.reset(curl_multi_init());
    TESSUM_CHECK(multi_ != nullptr, "libcurl gives no handle");
    const SignalsBlocked blocked;
    thread_ = std::thread([this] { run(); });
  }

  ~Loop() {
    isClosing_ = true;
    wake();
    thread_.join();
  }

  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  void add(std::shared_ptr<Transfer> transfer) {
    {
      const std::lock_guard lock(mutex_);
      added_.push_back(std::move(transfer));
    }
    wake();
  }

  void wake() { curl_multi_wakeup(multi_.get()); }

 private:
  void run() {
    while (!isClosing_) {
      startAdded();
      int running = 0;
      curl_multi_perform(multi_.get(), &running);
      endFinished();
      dropCancelled();
      endIdle();
      int ready = 0;
      curl_multi_poll(multi_.get(), nullptr, 0, patience(), &ready);
      if (ready == 0) handOnGathered();
    }
    while (!running_.empty()) remove(running_.back());
  }

  void startAdded() {
    std::vector<std::shared_ptr<Transfer>> added;
    {
      const std::lock_guard lock(mutex_);
      added.swap(added_);
    }
    for (auto& transfer : added) {
      curl_multi_add_handle(multi_.get(), transfer->start(settings_));
      running_.push_back(std::move(transfer));
    }
  }

  void endFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
      if (message->msg != CURLMSG_DONE) continue;
      const CURL* const easy = message->easy_handle;
      const CURLcode result = message->data.result;  // the message goes with the handle
      const std::shared_ptr<Transfer> finished =
          *std::find_if(running_.begin(), running_.end(),
                        [easy](const auto& transfer) { return transfer->easy() == easy; });
      end(finished, result);
    }
  }

  // The network makes a pause.
  void handOnGathered() {
    const auto running = running_;
    for (const auto& transfer : running) {
      if (transfer->hasGathered() && !transfer->handOn()) end(transfer, CURLE_WRITE_ERROR);
    }
  }

  void dropCancelled() {
    const auto running = running_;
    for (const auto& transfer : running) {
      if (transfer->isCancelled()) end(transfer, CURLE_ABORTED_BY_CALLBACK);
    }
  }

  void endIdle() {
    const auto now = SteadyClock::now();
    const auto running = running_;
    for (const auto& transfer : running) {
      if (idleEnd(*transfer) <= now) end(transfer, CURLE_OPERATION_TIMEDOUT);
    }
  }

  void end(const std::shared_ptr<Transfer>& transfer, CURLcode result) {
    transfer->end(result);
    remove(transfer);
  }

  void remove(std::shared_ptr<Transfer> transfer) {
    curl_multi_remove_handle(multi_.get(), transfer->easy());
    transfer->close();
    running_.erase(std::find(running_.begin(), running_.end(), transfer));
  }

  [[nodiscard]] SteadyClock::time_point idleEnd(const Transfer& transfer) const {
    return transfer.lastActivity() + std::chrono::duration_cast<SteadyClock::duration>(
                                         std::chrono::duration<double>(settings_.idleSeconds));
  }

  // How long, in milliseconds, the network may stay silent before there is something to do.
  [[nodiscard]] int patience() const {
    if (std::any_of(running_.begin(), running_.end(),
                    [](const auto& transfer) { return transfer->hasGathered(); })) {
      return 0;
    }
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);
    auto left = kLongest;
    for (const auto& transfer : running_) {
      left = std::min(left, std::chrono::ceil<std::chrono::milliseconds>(idleEnd(*transfer) -
                                                                         SteadyClock::now()));
    }
    return static_cast<int>(std::max(left, std::chrono::milliseconds(0)).count());
  }

  const Settings settings_;
  Multi multi_;
  std::atomic<bool> isClosing_ = false;
  std::mutex mutex_;
  std::vector<std::shared_ptr<Transfer>> added_;    // guarded by the mutex
  std::vector<std::shared_ptr<Transfer>> running_;  // the thread's own
  std::thread thread_;
};

namespace {

// The owner's end of a transfer.
class TransferHandle final : public HttpTransfer {
 public:
  TransferHandle(std::shared_ptr<Transfer> transfer, std::function<void()> wakeClient)
      : transfer_(std::move(transfer)), wakeClient_(std::move(wakeClient)) {}

  ~TransferHandle() override {
    transfer_->cancel();
    wakeClient_();
  }

  TransferHandle(const TransferHandle&) = delete;
  TransferHandle& operator=(const TransferHandle&) = delete;

 private:
  const std::shared_ptr<Transfer> transfer_;
  const std::function<void()> wakeClient_;
};

}  // namespace

CurlHttpClient::CurlHttpClient(Settings settings)
    : loop_(std::make_unique<Loop>(std::move(settings))) {}

CurlHttpClient::~CurlHttpClient() = default;

std::unique_ptr<HttpTransfer> CurlHttpClient::get(const std::string& url, HttpEvents events) {
  auto transfer = std::make_shared<Transfer>(url, std::move(events));
  loop_->add(transfer);
  return std::make_unique<TransferHandle>(std::move(transfer),
                                          [loop = loop_.get()] { loop->wake(); });
}

}  // namespace tessum
