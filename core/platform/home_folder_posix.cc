#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "core/base/check.h"
#include "core/platform/locations.h"

namespace tessum {
namespace {

constexpr std::size_t kUsualEntrySize = 16384;

std::optional<std::string> homeFromEnvironment() {
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return std::nullopt;
  return home;
}

std::optional<std::string> homeFromPasswd() {
  const long hint = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(hint > 0 ? static_cast<std::size_t>(hint) : kUsualEntrySize);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
      found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] != '/') {
    return std::nullopt;
  }
  return found->pw_dir;
}

}  // namespace

std::string SystemLocations::homeFolder() const {
  auto home = homeFromEnvironment();
  if (!home) home = homeFromPasswd();
  TESSUM_CHECK(home.has_value(), "the user has no home folder");
  while (home->size() > 1 && home->back() == '/') home->pop_back();
  return *home;
}

}  // namespace tessum
