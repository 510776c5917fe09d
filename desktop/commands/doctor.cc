#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/platform/private_files.h"
#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/data/state_data.h"
#include "desktop/doctor/finding.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/recording/left_open.h"
#include "desktop/recording/recorder_state.h"

namespace tessum {
namespace {

Table::Cell mark(const Finding& finding) {
  if (finding.isProblem()) return {"BAD", Tone::bad};
  return finding.isAdviceOnly ? Table::Cell{"tip", Tone::accent} : Table::Cell{"ok ", Tone::good};
}

void examine(Host& host, bool isData) {
  std::vector<Finding> findings;
  const auto add = [&](std::vector<Finding> more) {
    findings.insert(findings.end(), more.begin(), more.end());
  };
  add(checkSetup(host));
  add(checkFolder(host));
  add(checkHistory(host));
  add(checkWorkspace());
  add(checkClients(host));
  add(checkEndpoint());

  const bool isBad = std::any_of(findings.begin(), findings.end(),
                                 [](const Finding& finding) { return finding.isProblem(); });
  if (isBad) host.status = kFailure;
  if (isData) return printForeign(doctorData(findings));
  using enum Table::Alignment;
  Table table({left, left});
  for (const Finding& finding : findings) {
    table.addRow({mark(finding), {finding.text, Tone::plain, Table::Fit::wrap}});
    if (finding.remedy.empty()) continue;
    table.addRow({{""}, {finding.remedy, Tone::plain, Table::Fit::wrap}});
  }
  print(table.text(standardOutputPaper()));
}

// When `session` ends: after the given time or when the next session began, whichever comes first;
// without a time, when the recorder was last known to run.
std::optional<Date> endOf(History& history, const Activity& session,
                          const std::optional<double>& seconds, const RecorderState& recorder) {
  if (!seconds) return endOfLeftOpen(history, session, recorder);
  const auto next = history.startOfNext(session);
  const Date end = movedBy(session.startTime, *seconds);
  return next && next->secondsSince1970 < end.secondsSince1970 ? *next : end;
}

void closeOpenSessions(Host& host, const std::string& duration) {
  std::optional<double> seconds;
  if (!duration.empty()) seconds = durationArgument(duration);
  History history(historyPath(host.locations), History::Access::write);
  auto open = history.openSessions();
  const RecorderState recorder = recorderState(host.locations);
  if (currentSession(recorder, open)) open.pop_back();
  if (open.empty()) print("No session was left open.\n");
  for (const Activity& session : open) {
    const std::string name = printable(session.appName) + " of " + dateText(session.startTime) +
                             " " + clockText(session.startTime);
    const auto end = endOf(history, session, seconds, recorder);
    if (!end) {
      print(name + " stays open: nothing tells when it ended. Say how long it lasted, as in\n" +
            "\"Tessum doctor --close-open 10m\".\n");
      host.status = kFailure;
      continue;
    }
    history.endSession(session.id.value_or(0), *end);
    print(name + " now ends at " + dateText(*end) + " " + clockText(*end) + ".\n");
  }
}

void mend(const Host& host) {
  const auto paths = filesOpenToOthers(host.locations.dataFolder());
  if (paths.empty()) print("No file is open to other users.\n");
  for (const std::string& path : paths) {
    closeToOthers(path);
    print(printable(path) + " is now closed to other users.\n");
  }
}

}  // namespace

void addDoctorCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("doctor", "Find out what keeps Tessum from working");
  const auto duration = std::make_shared<std::string>();
  auto* close = command
                    ->add_option("--close-open", *duration,
                                 "end the sessions that were left open: this long after they began "
                                 "(1h30m, 45m or 90), but at the latest when the next session "
                                 "began; without a time, when the recorder was last known to run")
                    ->type_name("[TIME]")
                    ->expected(0, 1);
  const auto mends = std::make_shared<bool>(false);
  command->add_flag("--mend", *mends, "close the files in the data folder to other users")
      ->excludes(close);
  const auto isData = std::make_shared<bool>(false);
  addJsonOption(*command, *isData);
  command->get_option("--json")->excludes("--close-open", "--mend");
  command->footer(
      "The status is 1 when something is wrong. Without --close-open or --mend nothing is\n"
      "changed.\n\n"
      "Examples:\n"
      "  Tessum doctor\n"
      "  Tessum doctor --json\n"
      "  Tessum doctor --close-open\n"
      "  Tessum doctor --close-open 10m\n"
      "  Tessum doctor --mend");
  command->callback([&host, close, duration, mends, isData] {
    if (*mends) return mend(host);
    if (close->count() > 0) {
      closeOpenSessions(host, *duration);
    } else {
      examine(host, *isData);
    }
  });
}

}  // namespace tessum
