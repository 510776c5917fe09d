// Fetches what lies at an HTTPS address.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// What is known of an answer besides its body. Its status is not: whatever comes is the answer.
struct HttpHead {
  std::string url;  // the address that answered, which a redirect may have changed
  std::optional<std::string> contentDisposition;  // the header's value as it was sent
  std::optional<std::int64_t> contentLength;      // bytes of the whole body, when declared
};

// What hears of one transfer. Called on a thread of the client's own. What one of the first two
// throws ends the transfer as a failure with the exception's text.
struct HttpEvents {
  // Of get(): the next bytes of the body, at least one.
  std::function<void(const HttpHead& head, std::string_view bytes)> onData = nullptr;

  // Of download(): more of the body is in the file, `received` bytes in all.
  std::function<void(const HttpHead& head, std::int64_t received)> onProgress = nullptr;

  // The end; nothing follows. `failure` describes what went wrong and is absent when the whole
  // body came. Must not throw.
  std::function<void(const HttpHead& head, const std::optional<std::string>& failure)> onEnd;
};

// One transfer. Destroying it ends it, with all that its events hold: once the destructor has
// returned, none of them runs nor will. Any thread, but not from one of its own events.
class HttpTransfer {
 public:
  virtual ~HttpTransfer() = default;
};

// Any thread. A client must outlive its transfers.
class HttpClient {
 public:
  virtual ~HttpClient() = default;

  // Starts a plain GET of `url`. Redirects are followed, to HTTPS addresses only.
  [[nodiscard]] virtual std::unique_ptr<HttpTransfer> get(const std::string& url,
                                                          HttpEvents events) = 0;

  // The same, with the body written to the descriptor `file`, which must stay open until the end.
  [[nodiscard]] virtual std::unique_ptr<HttpTransfer> download(const std::string& url, int file,
                                                               HttpEvents events) = 0;
};

// The client over TessumFetch, a program that holds libcurl: HTTP/1.1, certificates checked, no
// headers but Host and Accept, proxies as the environment names them. Failures are in libcurl's
// words. Each transfer is a process and a thread, so that nothing that reads from the network is in
// this process, nor in memory once the transfer has ended.
class FetchProgramClient final : public HttpClient {
 public:
  struct Settings {
    std::string program;  // the path of TessumFetch

    // A file of certificates (PEM) of the authorities to trust instead of the system's, for a
    // network with an authority of its own.
    std::optional<std::string> authoritiesFile = std::nullopt;

    // How long a transfer may go without receiving anything, while connecting too.
    double idleSeconds = 60;
  };

  explicit FetchProgramClient(Settings settings);

  [[nodiscard]] std::unique_ptr<HttpTransfer> get(const std::string& url,
                                                  HttpEvents events) override;
  [[nodiscard]] std::unique_ptr<HttpTransfer> download(const std::string& url, int file,
                                                       HttpEvents events) override;

 private:
  [[nodiscard]] std::vector<std::string> commandFor(const std::string& url) const;

  const Settings settings_;
};

}  // namespace tessum
