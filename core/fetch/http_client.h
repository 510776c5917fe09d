// Fetches what lies at an HTTPS address.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessum {

// What is known of an answer besides its body. Its status is ignored: whatever comes is the answer.
struct HttpHead {
  std::string url;  // the address that answered, which a redirect may have changed
  std::optional<std::string> contentDisposition;  // the header's value as it was sent
  std::optional<std::int64_t> contentLength;      // bytes of the whole body, when declared
};

// How a transfer ended.
struct HttpResult {
  HttpHead head;
  std::string body;  // of get(): what came of it, which is all of it unless there is a failure
  std::optional<std::string> failure;  // what went wrong, for people; absent when nothing did
};

// One transfer. Destroying it ends it at once: neither of its callbacks runs again, and what they
// hold is released. It may be destroyed by its own OnEnd, but not by its own OnProgress. Main
// thread only.
class HttpTransfer {
 public:
  virtual ~HttpTransfer() = default;
};

// Calls return at once, and the callbacks come later, from the main loop. They must not throw. A
// client must outlive its transfers. Main thread only.
class HttpClient {
 public:
  // Told that more of the body is in the file, `received` bytes in all.
  using OnProgress = std::function<void(const HttpHead& head, std::int64_t received)>;

  // Told of the end, once.
  using OnEnd = std::function<void(HttpResult result)>;

  virtual ~HttpClient() = default;

  // Starts a plain GET of `url`. Redirects are followed, to HTTPS addresses only. A body of more
  // than `mostBytes` is a failure.
  [[nodiscard]] virtual std::unique_ptr<HttpTransfer> get(const std::string& url,
                                                          std::size_t mostBytes, OnEnd onEnd) = 0;

  // The same, with the body written to the descriptor `file`, which must stay open until the end.
  [[nodiscard]] virtual std::unique_ptr<HttpTransfer> download(const std::string& url, int file,
                                                               OnProgress onProgress,
                                                               OnEnd onEnd) = 0;
};

}  // namespace tessum
