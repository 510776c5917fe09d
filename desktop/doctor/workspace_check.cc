// The doctor's look at the desktop, through the eyes of the recorder.

#include <string>
#include <vector>

#include "core/loop/system_main_loop.h"
#include "core/workspace/desktop_sources.h"
#include "desktop/doctor/finding.h"
#include "desktop/doctor/title_permission.h"

namespace tessum {

std::vector<Finding> checkWorkspace() {
  std::vector<Finding> findings;
  const auto add = [&](const std::string& text) {
    findings.push_back(
        {text, "Run \"Tessum record\" in a desktop session that lets windows be seen: X11 does."});
  };
  try {
    SystemMainLoop loop;
    const SystemSteadyClock clock;
    const auto sources =
        openDesktopSources(loop, clock, [&](const WorkspaceNotice& notice) { add(notice.text); });
  } catch (const WorkspaceUnavailable& error) {
    add(error.what());
  }
  if (!mayReadTitles()) {
    findings.push_back({"Titles are not recorded: the system does not let this program see them.",
                        "Allow it in System Settings, Privacy & Security, Accessibility."});
  }
  if (findings.empty()) findings.push_back({"The desktop lets its windows be seen.", ""});
  return findings;
}

}  // namespace tessum
