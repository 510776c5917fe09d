#include "core/workspace/gnome/focused_window.h"

#include <limits>
#include <tuple>
#include <utility>

#include "core/workspace/title.h"

namespace tessum {
namespace {

std::optional<std::string> nameFrom(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return cutToLength(text, kLongestName);
}

std::optional<std::int32_t> processFrom(std::uint32_t process) {
  if (process == 0 || process > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(process);
}

}  // namespace

std::optional<FocusedWindow> readFocusedWindow(const BusMessage& message) {
  using Parts = std::tuple<std::string, std::string, std::string, std::string, std::uint32_t>;
  auto parts = message.readOne<Parts>();
  if (!parts) return std::nullopt;
  return std::make_from_tuple<FocusedWindow>(std::move(*parts));
}

WindowDescription describe(const FocusedWindow& window, const std::string& hostName) {
  return {.applicationId = nameFrom(window.applicationId),
          .instance = nameFrom(window.instance),
          .windowClass = nameFrom(window.windowClass),
          .process = processFrom(window.process),
          .clientMachine = hostName};
}

}  // namespace tessum
