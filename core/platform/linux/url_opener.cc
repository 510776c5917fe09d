#include <chrono>
#include <future>
#include <optional>
#include <system_error>
#include <thread>

#include "core/platform/spawn.h"
#include "core/platform/url_opener.h"

namespace tessum {
namespace {

constexpr std::chrono::seconds kPatience{2};

// The exit status that the opener will have; absent on a desktop without an opener.
std::optional<std::future<int>> startOpener(const std::string& url) {
  try {
    const pid_t opener = startProgram({"xdg-open", url});
    // The opener may run as long as the application it starts; this waits for its exit status.
    std::packaged_task<int()> wait([opener] { return waitForProgram(opener); });
    auto status = wait.get_future();
    std::thread(std::move(wait)).detach();
    return status;
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace

void SystemUrlOpener::open(const std::string& url) const {
  (void)startOpener(url);  // failures are not reported
}

bool SystemUrlOpener::hasOpened(const std::string& url) const {
  auto status = startOpener(url);
  if (!status) return false;
  // If it is still running, it has become the application.
  return status->wait_for(kPatience) != std::future_status::ready || status->get() == 0;
}

}  // namespace tessum
