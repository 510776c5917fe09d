// The HTTP client over the program TessumFetch.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/fetch/http_client.h"
#include "core/loop/main_loop.h"

namespace tessum {

// Each transfer is a process that holds libcurl, so that nothing that reads from the network is in
// this process, nor in memory once the transfer has ended. HTTP/1.1, certificates checked, no
// headers but Host and Accept, proxies as the environment names them. Failures of the network are
// described in libcurl's words.
//
// A transfer that receives nothing for a while fails. So does one that is not over after an hour,
// or after a day when it goes into a file.
class FetchProgramClient final : public HttpClient {
 public:
  struct Settings {
    // The absolute path of TessumFetch. With any other path, transfers fail: the program is never
    // looked for.
    std::string program;

    // A file of certificates (PEM) of the authorities to trust instead of the system's, for a
    // network with an authority of its own.
    std::optional<std::string> authoritiesFile = std::nullopt;

    // How long a transfer may go without receiving anything, while connecting too.
    double idleSeconds = 60;
  };

  // `loop` must outlive the client.
  FetchProgramClient(MainLoop& loop, Settings settings);

  [[nodiscard]] std::unique_ptr<HttpTransfer> get(const std::string& url, std::size_t mostBytes,
                                                  OnEnd onEnd) override;
  [[nodiscard]] std::unique_ptr<HttpTransfer> download(const std::string& url, int file,
                                                       OnProgress onProgress, OnEnd onEnd) override;

 private:
  [[nodiscard]] std::vector<std::string> commandFor(const std::string& url) const;

  MainLoop& loop_;
  const Settings settings_;
};

}  // namespace tessum
