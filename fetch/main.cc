// TessumFetch: fetches an HTTPS URL for the program that starts it.
//
//   TessumFetch URL IDLE-SECONDS [AUTHORITIES-FILE]
//
// The body goes to standard output; its size and the outcome go to standard error, in the format of
// core/fetch/fetch_parts.h. core/fetch/fetch_program_client.h describes the arguments, as settings.
// The program ends when the reader of its standard error closes.
//
// It is a separate program so that libcurl and the some thirty libraries it needs are in memory
// only during a transfer, and never in the process that records.

#include <curl/curl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "core/base/check.h"
#include "core/fetch/fetch_parts.h"
#include "core/platform/descriptor.h"

namespace tessum {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr long kMostRedirects = 20;

// libcurl delivers a body in TLS records of at most 16 KiB. Records that arrive without a pause are
// combined into larger pieces, because each piece wakes the reader.
constexpr std::size_t kLargestPiece = std::size_t{256} << 10;
static_assert(kLargestPiece + CURL_MAX_WRITE_SIZE <= kLargestFetchPart);

std::string headerOf(FetchPart kind, std::size_t size) {
  const FetchPartHeader header{kind, static_cast<std::uint32_t>(size)};
  return {reinterpret_cast<const char*>(&header), sizeof header};
}

void say(std::string_view bytes) {
  if (writeAll(STDERR_FILENO, bytes) != 0) std::exit(EXIT_FAILURE);
}

void tell(FetchPart kind, std::string_view content = "") {
  say(headerOf(kind, content.size()).append(content));
}

bool isSomebodyReading() {
  pollfd reader{STDERR_FILENO, 0, 0};
  return poll(&reader, 1, 0) <= 0;
}

struct MultiCloser {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct EasyCloser {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};

template <typename T>
void set(CURL* easy, CURLoption option, T value) {
  TESSUM_CHECK(curl_easy_setopt(easy, option, value) == CURLE_OK, "libcurl lacks an option");
}

// The libcurl of macOS 13.0 does not have the options that replace these two.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void allowOnlyHttps(CURL* easy) {
  set(easy, CURLOPT_PROTOCOLS, long{CURLPROTO_HTTPS});
  set(easy, CURLOPT_REDIR_PROTOCOLS, long{CURLPROTO_HTTPS});
}
#pragma GCC diagnostic pop

class Transfer {
 public:
  // Trusts the system's authorities when `authorities` is null.
  Transfer(const char* url, double idleSeconds, const char* authorities)
      : patience_(std::chrono::duration_cast<SteadyClock::duration>(
            std::chrono::duration<double>(idleSeconds))) {
    TESSUM_CHECK(multi_ != nullptr && easy_ != nullptr, "libcurl gives no handle");
    CURL* const easy = easy_.get();
    set(easy, CURLOPT_URL, url);
    set(easy, CURLOPT_PATH_AS_IS, 1L);  // a tag or a name may contain "/../"
    allowOnlyHttps(easy);
    set(easy, CURLOPT_FOLLOWLOCATION, 1L);
    set(easy, CURLOPT_MAXREDIRS, kMostRedirects);
    set(easy, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(easy, CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    set(easy, CURLOPT_NOSIGNAL, 1L);
    if (authorities != nullptr) {
      set(easy, CURLOPT_CAINFO, authorities);
      set(easy, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    set(easy, CURLOPT_HEADERFUNCTION, &Transfer::receiveHeader);
    set(easy, CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(easy, CURLOPT_WRITEFUNCTION, &Transfer::receiveBody);
    set(easy, CURLOPT_WRITEDATA, static_cast<void*>(this));
    curl_multi_add_handle(multi_.get(), easy);
  }

  ~Transfer() { curl_multi_remove_handle(multi_.get(), easy_.get()); }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // Fetches the URL, and writes the head, the body and the outcome.
  void run() {
    const CURLcode result = perform();
    if (!handOn()) {
      tell(FetchPart::failure, "Cannot write the file: " + std::string(std::strerror(writeError_)));
    } else if (result != CURLE_OK) {
      tell(FetchPart::failure, curl_easy_strerror(result));
    } else {
      tell(FetchPart::success);
    }
  }

 private:
  CURLcode perform() {
    for (;;) {
      int running = 0;
      curl_multi_perform(multi_.get(), &running);
      if (running == 0) return result();
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(lastActivity_ + patience_ -
                                                                     SteadyClock::now());
      if (left.count() <= 0) return CURLE_OPERATION_TIMEDOUT;
      curl_waitfd reader{STDERR_FILENO, 0, 0};  // wakes the poll when the reader closes
      int ready = 0;
      curl_multi_poll(multi_.get(), &reader, 1,
                      gathered_.empty() ? static_cast<int>(left.count()) : 0, &ready);
      if (!isSomebodyReading()) return CURLE_ABORTED_BY_CALLBACK;
      const bool isPause = ready == 0;
      if (isPause && !handOn()) return CURLE_WRITE_ERROR;
    }
  }

  [[nodiscard]] CURLcode result() const {
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left);
    TESSUM_CHECK(message != nullptr && message->msg == CURLMSG_DONE, "libcurl ended nothing");
    // libcurl treats a response that is cut off within its headers as an empty one.
    const CURLcode result = message->data.result;
    return result == CURLE_OK && !hasHeaders_ ? CURLE_PARTIAL_FILE : result;
  }

  // libcurl calls this with each line of the headers and with the empty line that ends them.
  // Headers that follow a body come without an empty line.
  static std::size_t receiveHeader(char* line, std::size_t size, std::size_t count, void* self) {
    auto* const transfer = static_cast<Transfer*>(self);
    transfer->lastActivity_ = SteadyClock::now();
    const std::string_view text(line, size * count);
    if (text.starts_with("HTTP/")) transfer->hasHeaders_ = false;
    if (text == "\r\n" || text == "\n") transfer->hasHeaders_ = true;
    return text.size();
  }

  static std::size_t receiveBody(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto* const transfer = static_cast<Transfer*>(self);
    transfer->gathered_.append(bytes, size * count);
    if (transfer->gathered_.size() >= kLargestPiece && !transfer->handOn()) return 0;
    transfer->lastActivity_ = SteadyClock::now();  // only now: writing may wait for the disk
    return size * count;
  }

  // Writes the head, unless already written, and the gathered part of the body. False when that
  // fails.
  bool handOn() {
    if (!hasToldHead_) tellHead();
    hasToldHead_ = true;
    if (writeError_ != 0) return false;
    if (gathered_.empty()) return true;
    say(headerOf(FetchPart::body, gathered_.size()));
    if (writeAll(STDOUT_FILENO, gathered_) != 0) {
      writeError_ = errno;
      return false;
    }
    gathered_.clear();
    tell(FetchPart::written);
    return true;
  }

  void tellHead() const {
    const char* url = nullptr;
    if (curl_easy_getinfo(easy_.get(), CURLINFO_EFFECTIVE_URL, &url) == CURLE_OK &&
        url != nullptr) {
      tell(FetchPart::url, url);
    }
    curl_header* header = nullptr;
    constexpr int kLastAnswer = -1;
    if (curl_easy_header(easy_.get(), "Content-Disposition", 0, CURLH_HEADER, kLastAnswer,
                         &header) == CURLHE_OK) {
      tell(FetchPart::contentDisposition, header->value);
    }
    curl_off_t length = -1;
    if (curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length) == CURLE_OK &&
        length >= 0) {
      tell(FetchPart::contentLength, std::to_string(length));
    }
  }

  const SteadyClock::duration patience_;
  const std::unique_ptr<CURLM, MultiCloser> multi_{curl_multi_init()};
  const std::unique_ptr<CURL, EasyCloser> easy_{curl_easy_init()};
  SteadyClock::time_point lastActivity_ = SteadyClock::now();
  bool hasHeaders_ = false;  // whether the last response's are complete
  bool hasToldHead_ = false;
  std::string gathered_;  // the part of the body not written yet
  int writeError_ = 0;    // why the body cannot be written; 0 when it can
};

int run(int count, char** arguments) {
  if (count != 3 && count != 4) {
    std::fputs("usage: TessumFetch URL IDLE-SECONDS [AUTHORITIES-FILE]\n", stderr);
    return 2;
  }
  std::signal(SIGXFSZ, SIG_IGN);  // so that exceeding a file size limit is an error
  TESSUM_CHECK(curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK, "libcurl cannot be used");
  Transfer(arguments[1], std::strtod(arguments[2], nullptr), arguments[3]).run();
  curl_global_cleanup();
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace tessum

int main(int count, char** arguments) {
  return tessum::run(count, arguments);
}
