#include "core/workspace/gnome/shell_extension.h"

#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

#include "core/workspace/title.h"

namespace tessum {
namespace {

constexpr char kShellPath[] = "/org/gnome/Shell";
constexpr char kExtensions[] = "org.gnome.Shell.Extensions";
constexpr char kScreenSaver[] = "org.gnome.ScreenSaver";
constexpr char kScreenSaverPath[] = "/org/gnome/ScreenSaver";

constexpr int kLastClassicVersion = 44;

// A shell that is starting takes its name before it answers.
constexpr double kRetrySeconds = 2;

// The states of an extension. Left out are those in which it runs, or comes up or goes by itself.
constexpr int kDisabled = 2;
constexpr int kFailed = 3;
constexpr int kOutOfDate = 4;
constexpr int kInitialized = 6;  // read, and never turned on
constexpr int kUninstalled = 99;

// Turns the extension on, and installs it where no package has.
constexpr char kSetup[] = "\"Tessum setup\"";

WorkspaceNotice waiting(const std::string& reason, std::string remedy) {
  return {.text = "Recording waits for Tessum's extension of GNOME Shell: " + reason,
          .remedy = std::move(remedy)};
}

bool isInstalled(const std::string& extension, const std::vector<std::string>& dataFolders) {
  for (const auto& folder : dataFolders) {
    std::error_code ignored;
    const auto file = folder + "/gnome-shell/extensions/" + extension + "/metadata.json";
    if (std::filesystem::exists(file, ignored)) return true;
  }
  return false;
}

}  // namespace

ShellExtensionReport readShellExtension(const BusDictionary& shell,
                                        const BusDictionary& extension) {
  const auto textAt = [](const BusDictionary& values, const char* name) {
    return cutToLength(valueOf<std::string>(values, name).value_or(""), kLongestName);
  };
  ShellExtensionReport report{.shellVersion = textAt(shell, "ShellVersion"),
                              .error = textAt(extension, "error")};
  report.allowsExtensions = valueOf<bool>(shell, "UserExtensionsEnabled").value_or(true);
  const auto state = valueOf<double>(extension, "state");
  if (state) report.state = *state >= 0 && *state <= kUninstalled ? static_cast<int>(*state) : 0;
  return report;
}

std::string shellExtensionFor(std::string_view shellVersion) {
  int version = 0;
  const auto [end, error] =
      std::from_chars(shellVersion.data(), shellVersion.data() + shellVersion.size(), version);
  const bool isClassic = error == std::errc() && version <= kLastClassicVersion;
  return isClassic ? "focused-window-44@tessum" : "focused-window@tessum";
}

std::optional<WorkspaceNotice> noticeOf(const ShellExtensionReport& report) {
  const int state = report.state.value_or(kUninstalled);
  if (state == kUninstalled && !report.isInstalled) {
    return waiting("it is not installed.",
                   std::string("Run ") + kSetup + ", and log out and in again.");
  }
  if (state == kUninstalled) {
    return waiting("the shell finds it at your next login.",
                   std::string("Log out and in again, and run ") + kSetup + ".");
  }
  if (state == kOutOfDate) {
    return waiting("it does not know GNOME " + report.shellVersion + ".",
                   "Install a newer version of Tessum.");
  }
  if (state == kFailed) {
    return waiting("the shell could not start it: " + report.error,
                   "Install a newer version of Tessum, and log out and in again.");
  }
  if (state != kDisabled && state != kInitialized) return std::nullopt;
  if (!report.allowsExtensions) {
    return waiting(
        "the shell is set to run no extensions.",
        std::string("Turn them on in the application Extensions, and run ") + kSetup + ".");
  }
  return waiting("it is turned off.", std::string("Run ") + kSetup + ".");
}

ShellExtension::ShellExtension(MainLoop& loop, Bus& session, std::string owner,
                               std::vector<std::string> dataFolders,
                               WorkspaceNoticeHandler onNotice)
    : loop_(loop),
      session_(session),
      owner_(std::move(owner)),
      dataFolders_(std::move(dataFolders)),
      onNotice_(std::move(onNotice)),
      changes_(session.subscribe({.sender = owner_,
                                  .path = kShellPath,
                                  .interface = kExtensions,
                                  .member = "ExtensionStateChanged"},
                                 [this](const BusMessage&) { ask(); })),
      lockChanges_(session.subscribe({.sender = owner_,
                                      .path = kScreenSaverPath,
                                      .interface = kScreenSaver,
                                      .member = "ActiveChanged"},
                                     [this](const BusMessage&) { ask(); })) {
  ask();
}

ShellExtension::~ShellExtension() {
  if (timer_) loop_.invalidateTimer(*timer_);
}

// A shell without a lock screen answers with an error.
void ShellExtension::ask() {
  question_ = session_.call({owner_, kScreenSaverPath, kScreenSaver, "GetActive"},
                            [this](const BusMessage& reply) {
                              if (!reply.readOne<bool>().value_or(false)) askForVersion();
                            });
}

void ShellExtension::askLater() {
  if (timer_) return;
  timer_ = loop_.runAfter(kRetrySeconds, [this] {
    timer_.reset();
    ask();
  });
}

void ShellExtension::askForVersion() {
  question_ = session_.call(
      busProperties(owner_, kShellPath, kExtensions), [this](const BusMessage& reply) {
        const auto properties = reply.readOne<BusDictionary>();
        if (!properties) return askLater();
        shell_ = *properties;
        askFor(shellExtensionFor(readShellExtension(shell_, {}).shellVersion));
      });
}

void ShellExtension::askFor(const std::string& extension) {
  question_ = session_.call({owner_, kShellPath, kExtensions, "GetExtensionInfo", {extension}},
                            [this, extension](const BusMessage& reply) {
                              const auto properties = reply.readOne<BusDictionary>();
                              if (!properties) return askLater();
                              auto report = readShellExtension(shell_, *properties);
                              report.isInstalled = isInstalled(extension, dataFolders_);
                              if (const auto notice = noticeOf(report)) onNotice_(*notice);
                            });
}

}  // namespace tessum
