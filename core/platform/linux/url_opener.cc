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

// Its exit status to come; absent on a desktop without an opener.
std::optional<std::future<int>> startOpener(const std::string& url) {
  try {
    const pid_t opener = startProgram({"xdg-open", url});
    // It may run as long as the application it starts; somebody has to take its exit status.
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
  (void)startOpener(url);  // nobody is to be told
}

bool SystemUrlOpener::hasOpened(const std::string& url) const {
  auto status = startOpener(url);
  if (!status) return false;
  // One that is still running has become the application.
  return status->wait_for(kPatience) != std::future_status::ready || status->get() == 0;
}

}  // namespace tessum
