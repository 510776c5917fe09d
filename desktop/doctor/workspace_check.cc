// Checks what the recorder can see of the desktop.

#include <optional>
#include <string>
#include <vector>

#include "core/loop/system_main_loop.h"
#include "core/workspace/desktop_sources.h"
#include "desktop/doctor/finding.h"
#include "desktop/doctor/title_permission.h"

namespace tessum {
namespace {

constexpr char kUsualRemedy[] =
    "Run \"Tessum record\" in a desktop session that lets windows be seen.";

// How long a desktop may take to show a window or to say why it does not.
constexpr double kPatienceSeconds = 1;

}  // namespace

std::vector<Finding> checkWorkspace() {
  std::vector<Finding> findings;
  const auto add = [&](const std::string& text, const std::string& remedy) {
    findings.push_back({text, remedy.empty() ? kUsualRemedy : remedy});
  };
  try {
    SystemMainLoop loop;
    const SystemSteadyClock clock;
    const auto sources = openDesktopSources(loop, clock, [&](const WorkspaceNotice& notice) {
      add(notice.text, notice.remedy);
      loop.quit();
    });
    sources.front->start([&](const std::optional<Front>& front, Moment) {
      if (front) loop.quit();
    });
    loop.runAfter(kPatienceSeconds, [&] { loop.quit(); });
    loop.run();
    if (findings.empty()) {
      findings.push_back(
          {"The desktop lets its windows be seen, by " + sources.front->way() + ".", ""});
    }
  } catch (const WorkspaceUnavailable& error) {
    add(error.what(), "");
  }
  if (!mayReadTitles()) {
    findings.push_back({"Titles are not recorded: the system does not let this program see them.",
                        "Allow it in System Settings, Privacy & Security, Accessibility."});
  }
  return findings;
}

}  // namespace tessum
