#include "desktop/setup/login_start.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "core/workspace/linux/environment.h"
#include "desktop/host/own_program.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/setup/program_run.h"
#include "desktop/setup/recorder_process.h"
#include "desktop/setup/start_files.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr char kUnit[] = "tessum-record.service";
constexpr char kEntry[] = "tessum-record.desktop";
constexpr char kTarget[] = "graphical-session.target";

std::string userUnits(const Host& host) {
  return host.locations.configFolder() + "/systemd/user";
}

// Enabling a unit means this link.
std::string linkIn(const std::string& units) {
  return units + "/" + kTarget + ".wants/" + kUnit;
}

std::string entryPath(const Host& host) {
  return host.locations.configFolder() + "/autostart/" + kEntry;
}

// The text of a file that somebody else may have written; empty when it cannot be read.
std::string textAt(const Host& host, const std::string& path) {
  try {
    return host.files.read(path);
  } catch (const std::system_error&) {
    return "";
  }
}

// Whether the unit or entry `text` starts a program that is there. One that a user has written
// counts as well as ours.
bool isOfUse(const std::string& text, std::string_view key) {
  const std::string command = startCommand(text, key);
  if (command.empty() || isTurnedOffEntry(text)) return false;
  return !command.starts_with('/') || access(command.c_str(), X_OK) == 0;
}

bool isUnitOfUse(const Host& host, const std::string& path) {
  const std::string text = textAt(host, path);
  return text == unitFor(ownProgram(host.locations)) || isOfUse(text, "ExecStart");
}

bool isEntryOfUse(const Host& host, const std::string& path) {
  const std::string text = textAt(host, path);
  return text == entryFor(ownProgram(host.locations)) || isOfUse(text, "Exec");
}

// A link to a unit that is gone leads nowhere.
bool isEnabledIn(const Host& host, const std::string& units) {
  return isUnitOfUse(host, linkIn(units));
}

// The unit that a package has installed beside `program`; empty when systemd would find none there.
std::string packagedUnit(const std::string& program) {
  for (const std::string prefix : {"/usr", "/usr/local"}) {
    std::string unit = prefix + "/lib/systemd/user/" + kUnit;
    std::error_code ignored;
    if (program == prefix + "/bin/Tessum" && fs::exists(unit, ignored)) return unit;
  }
  return "";
}

bool hasSystemd() {
  return runProgram({"systemctl", "--user", "is-active", "--quiet", kTarget}).hasSucceeded;
}

void startService() {
  if (!runProgram({"systemctl", "--user", "start", kUnit}).hasSucceeded) {
    throw std::runtime_error(std::string("systemd does not start ") + kUnit +
                             "; \"systemctl --user status " + kUnit + "\" says why.");
  }
}

SetupStep enablingStep(const Host& host) {
  const std::string own = userUnits(host) + "/" + kUnit;
  const std::string packaged = packagedUnit(ownProgram(host.locations));
  const bool keepsOwn = isUnitOfUse(host, own);
  const bool writesOwn = !keepsOwn && packaged.empty();
  const std::string unit = keepsOwn || writesOwn ? own : packaged;
  SetupStep step{.plan = "start recording with each login to your desktop, by systemd",
                 .details = {linkIn(userUnits(host))},
                 .carryOut = {}};
  if (writesOwn) step.details.insert(step.details.begin(), own);
  step.carryOut = [&host, own, unit, writesOwn](SetupChanges& changes) {
    if (writesOwn) changes.makeFile(own, unitFor(ownProgram(host.locations)));
    changes.makeLink(linkIn(userUnits(host)), unit);
    changes.add({.kind = SetupChange::Kind::service, .target = kUnit});
    rereadServices();
  };
  return step;
}

// From now on every recorder except the one that already runs was started because of setup.
void noteRecorder(const Host& host, SetupChanges& changes) {
  changes.add({.kind = SetupChange::Kind::recorder,
               .target = "Tessum record",
               .content = runningRecorder(host)});
}

SetupStep entryStep(const Host& host) {
  return {.plan = "start recording with each login to your desktop, by an autostart entry",
          .details = {entryPath(host)},
          .carryOut = [&host](SetupChanges& changes) {
            changes.makeFile(entryPath(host), entryFor(ownProgram(host.locations)));
            noteRecorder(host, changes);
          }};
}

SetupStep startStep(const Host& host, bool bySystemd) {
  return {
      .plan = "start recording now", .details = {}, .carryOut = [&host, bySystemd](auto& changes) {
        if (bySystemd) {
          changes.add({.kind = SetupChange::Kind::service, .target = kUnit});
          startService();
          return;
        }
        noteRecorder(host, changes);
        startRecorder(host);
      }};
}

}  // namespace

std::optional<std::string> loginStart(const Host& host) {
  for (const std::string& units : {userUnits(host), std::string("/etc/systemd/user")}) {
    if (isEnabledIn(host, units)) return "by systemd, " + linkIn(units);
  }
  // The user's entry counts even if it turns the system's off.
  for (const std::string& entry : {entryPath(host), std::string("/etc/xdg/autostart/") + kEntry}) {
    std::error_code ignored;
    if (!fs::exists(entry, ignored)) continue;
    return isEntryOfUse(host, entry) ? std::optional("by " + entry) : std::nullopt;
  }
  return std::nullopt;
}

std::vector<SetupStep> loginSteps(const Host& host, bool startsNow) {
  const bool bySystemd = hasSystemd();
  const bool hasEntry = isEntryOfUse(host, entryPath(host));
  const bool isEnabled = bySystemd && isEnabledIn(host, userUnits(host));
  std::vector<SetupStep> steps;
  if (bySystemd && !isEnabled && !hasEntry) steps.push_back(enablingStep(host));
  if (!bySystemd && !hasEntry) steps.push_back(entryStep(host));
  if (startsNow) steps.push_back(startStep(host, bySystemd && !hasEntry));
  return steps;
}

std::string loginAdvice(const Host& host) {
  // Compositors that start nothing by themselves, and what each has in its configuration for that.
  struct Compositor {
    const char* desktop;
    const char* file;
    const char* line;
  };
  constexpr std::array<Compositor, 2> kCompositors{{
      {"sway", "sway/config", "exec "},
      {"Hyprland", "hypr/hyprland.conf", "exec-once = "},
  }};
  const std::string desktop = environment("XDG_CURRENT_DESKTOP");
  for (const Compositor& compositor : kCompositors) {
    if (desktop != compositor.desktop || hasSystemd()) continue;
    return desktop + " runs no autostart entries by itself. Add this line to " +
           host.locations.configFolder() + "/" + compositor.file + ": " + compositor.line +
           ownProgram(host.locations) + " record";
  }
  return "";
}

void stopService(const std::string& name) {
  static_cast<void>(runProgram({"systemctl", "--user", "stop", name}));
}

void rereadServices() {
  static_cast<void>(runProgram({"systemctl", "--user", "daemon-reload"}));
}

}  // namespace tessum
