// GNOME Shell reads which extensions are installed at login, and follows the list of those that are
// turned on at any time. "gnome-extensions enable" asks the shell, which refuses an extension that
// it has not read yet; so the list itself is changed.

#include "desktop/setup/desktop_helper.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "core/bus/bus_names.h"
#include "core/workspace/gnome/shell_extension.h"
#include "core/workspace/linux/environment.h"
#include "desktop/setup/program_run.h"
#include "desktop/setup/start_files.h"
#include "tessum_shipped_files.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr char kShellSettings[] = "org.gnome.shell";
constexpr char kEnabledList[] = "enabled-extensions";

// Whether one of the folders of data holds `file`.
bool isInstalled(const std::string& file) {
  const auto folders = systemDataFolders();
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
    std::error_code ignored;
    return fs::exists(folder + "/" + file, ignored);
  });
}

std::string userDataFolder(const Host& host) {
  return fs::path(host.locations.dataFolder()).parent_path().string();
}

////////////////////////////////////////////////////////////////////////////////////////////////
// GNOME Shell

// The version as "GNOME Shell 43.9" tells it; empty when it cannot be found out.
std::string shellVersion() {
  const std::string text = runProgram({"gnome-shell", "--version"}).output;
  const auto digit = text.find_first_of("0123456789");
  return digit == std::string::npos ? "" : text.substr(digit, text.find('\n') - digit);
}

// The list of extensions that are turned on, as GVariant writes it: ['one', 'two'].
std::string enabledExtensions() {
  return runProgram({"gsettings", "get", kShellSettings, kEnabledList}).output;
}

std::string quoted(const std::string& extension) {
  return "'" + extension + "'";
}

void setEnabledExtensions(const std::string& list) {
  if (runProgram({"gsettings", "set", kShellSettings, kEnabledList, list}).hasSucceeded) return;
  throw std::runtime_error("gsettings does not change which extensions GNOME Shell runs.");
}

void turnOnShellExtension(const std::string& extension) {
  const std::string list = enabledExtensions();
  const auto end = list.rfind(']');
  const auto begin = list.find('[');
  if (begin == std::string::npos || end == std::string::npos) {
    throw std::runtime_error("gsettings does not tell which extensions GNOME Shell runs.");
  }
  const std::string others = list.substr(begin + 1, end - begin - 1);
  setEnabledExtensions("[" + others + (others.empty() ? "" : ", ") + quoted(extension) + "]");
}

std::vector<SetupStep> shellSteps(const Host& host) {
  const std::string extension = shellExtensionFor(shellVersion());
  const std::string folder = "gnome-shell/extensions/" + extension;
  std::vector<SetupStep> steps;
  const bool isThere = isInstalled(folder + "/metadata.json");
  if (!isThere) {
    const std::string target = userDataFolder(host) + "/" + folder;
    steps.push_back({.plan = "install the extension of GNOME Shell that tells which window has the "
                             "focus; the shell finds it at your next login",
                     .details = {target},
                     .carryOut = [target, extension](SetupChanges& changes) {
                       const bool isClassic = extension == shellExtensionFor("44");
                       changes.makeFile(target + "/extension.js",
                                        isClassic ? kExtensionScript44 : kExtensionScript);
                       changes.makeFile(target + "/metadata.json",
                                        isClassic ? kExtensionMetadata44 : kExtensionMetadata);
                     }});
  }
  if (enabledExtensions().find(quoted(extension)) == std::string::npos) {
    steps.push_back({.plan = "turn on the extension " + extension + " of GNOME Shell",
                     .details = {},
                     .carryOut = [extension](SetupChanges& changes) {
                       changes.add(
                           {.kind = SetupChange::Kind::shellExtension, .target = extension});
                       turnOnShellExtension(extension);
                     }});
  }
  return steps;
}

////////////////////////////////////////////////////////////////////////////////////////////////
// KDE Plasma

// Whether some entry lets `program` see Plasma's windows.
bool isAllowed(const Host& host, const std::string& program) {
  const auto folders = systemDataFolders();
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
    const std::string path = folder + "/applications/tessum-windows.desktop";
    return host.files.exists(path) && host.files.read(path) == windowsEntryFor(program);
  });
}

std::vector<SetupStep> plasmaSteps(const Host& host) {
  const auto program = host.locations.executablePath();
  if (!program || isAllowed(host, *program)) return {};
  const std::string path = userDataFolder(host) + "/applications/tessum-windows.desktop";
  return {{.plan = "write the desktop entry by which KDE Plasma shows its windows to this program",
           .details = {path},
           .carryOut = [path, program = *program](SetupChanges& changes) {
             changes.makeFile(path, windowsEntryFor(program));
           }}};
}

}  // namespace

std::vector<SetupStep> desktopHelperSteps(const Host& host) {
  if (environment("WAYLAND_DISPLAY").empty()) return {};
  const auto names = namesOnBus(Bus::Kind::session);
  const bool isPlasma =
      names.contains("org.kde.KWin") || environment("XDG_CURRENT_DESKTOP") == "KDE";
  if (isPlasma) return plasmaSteps(host);
  if (names.contains("org.gnome.Shell")) return shellSteps(host);
  return {};
}

void turnOffShellExtension(const std::string& extension) {
  std::string list = enabledExtensions();
  const std::string item = quoted(extension);
  const auto at = list.find(item);
  if (at == std::string::npos) return;
  list.erase(at, item.size());
  // One of the commas beside it goes, too.
  constexpr std::string_view kComma = ", ";
  if (list.compare(at, kComma.size(), kComma) == 0) {
    list.erase(at, kComma.size());
  } else if (at >= kComma.size() && list.compare(at - kComma.size(), kComma.size(), kComma) == 0) {
    list.erase(at - kComma.size(), kComma.size());
  }
  if (list.find('\'') == std::string::npos) list = "@as []";
  setEnabledExtensions(list);
}

}  // namespace tessum
