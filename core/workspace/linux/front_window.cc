#include "core/workspace/linux/front_window.h"

namespace tessum {
namespace {

std::optional<DesktopEntries::Match> findEntry(const WindowDescription& description,
                                               const DesktopEntries& entries) {
  for (const auto& id : {description.applicationId, description.desktopFile}) {
    if (!id) continue;
    if (auto match = entries.withId(*id)) return match;
  }
  const auto instance = description.instance.value_or("");
  const auto windowClass = description.windowClass.value_or("");
  if (auto match = entries.forWindowClass(instance, windowClass)) return match;
  // A package may hold several applications, and these tell only the package.
  for (const auto& id : {description.applicationId, description.windowClass}) {
    if (!id) continue;
    if (auto match = entries.forSandbox(*id)) return match;
  }
  return std::nullopt;
}

// A process number is valid only on its own machine, so it counts only when the window names this
// machine.
std::optional<std::int32_t> localProcess(const WindowDescription& description,
                                         const std::string& hostName) {
  if (description.clientMachine != hostName) return std::nullopt;
  return description.process;
}

}  // namespace

FrontWindow identify(const WindowDescription& description, const DesktopEntries& entries,
                     const std::string& hostName, const ProcessName& processName) {
  const auto match = findEntry(description, entries);
  const auto process = localProcess(description, hostName);
  RunningApplication application{std::nullopt, description.applicationId, process};
  if (match) {
    application.localizedName = match->entry.name;
    application.bundleIdentifier = match->id;
  } else if (description.windowClass) {
    application.localizedName = description.windowClass;
  } else if (process) {
    application.localizedName = processName(*process);
  }

  // Many applications use a different instance for each kind of window, so the class counts.
  ApplicationKey key{.name = "", .process = process, .window = 0};
  if (application.bundleIdentifier) {
    key.name = *application.bundleIdentifier;
  } else if (description.windowClass) {
    key.name = *description.windowClass;
  } else if (!process) {
    key.window = description.window;
  }
  return {.key = key, .application = application};
}

}  // namespace tessum
