#include "core/workspace/linux/focused_window.h"

#include <charconv>
#include <limits>
#include <system_error>
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

std::uint32_t numberFrom(const std::string& text) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

}  // namespace

std::optional<FocusedWindow> readFocusedWindow(const BusMessage& message) {
  using Text = std::string;
  if (auto parts = message.readOne<std::tuple<Text, Text, Text, Text, std::uint32_t>>()) {
    auto& [application, instance, windowClass, title, process] = *parts;
    return FocusedWindow{std::move(application), std::move(instance), std::move(windowClass),
                         std::move(title), process};
  }
  auto texts = message.read<Text, Text, Text, Text, Text>();
  if (!texts) return std::nullopt;
  auto& [application, instance, windowClass, title, process] = *texts;
  return FocusedWindow{std::move(application), std::move(instance), std::move(windowClass),
                       std::move(title), numberFrom(process)};
}

WindowDescription describe(const FocusedWindow& window, const std::string& hostName) {
  return {.applicationId = nameFrom(window.applicationId),
          .instance = nameFrom(window.instance),
          .windowClass = nameFrom(window.windowClass),
          .process = processFrom(window.process),
          .clientMachine = hostName};
}

void showFocusedWindow(const BusMessage& message, WindowIdentifier& identifier, Moment now,
                       FrontTracker& tracker) {
  auto focused = readFocusedWindow(message);
  if (!focused) return;
  if (focused->isNone()) return tracker.show(std::nullopt, now);
  FrontWindow window = identifier.identify(describe(*focused, identifier.hostName()));
  window.title = titleFrom(std::move(focused->title));
  tracker.show(window, now);
}

}  // namespace tessum
