#include <system_error>
#include <thread>

#include "core/platform/spawn.h"
#include "core/platform/url_opener.h"

namespace tessum {

void SystemUrlOpener::open(const std::string& url) const {
  try {
    const pid_t opener = startProgram({"xdg-open", url});
    // It may run as long as the application it starts; somebody has to take its exit status.
    std::thread([opener] { waitForProgram(opener); }).detach();
  } catch (const std::system_error&) {
    // A desktop without an opener; nobody is to be told.
  }
}

}  // namespace tessum
