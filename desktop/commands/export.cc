#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/json/writer.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/commands/arguments.h"
#include "desktop/commands/reports/data_options.h"
#include "desktop/commands/standard_output.h"
#include "desktop/data/csv.h"

namespace tessum {
namespace {

struct ExportOptions {
  DaysOptions days;
  std::string format = "csv";
  bool isRaw = false;
};

// A line of one session or note.
std::string exportLine(const std::string& kind, Date start, const std::optional<Date>& end,
                       const std::vector<std::string>& texts, bool isRaw) {
  std::vector<std::string> fields{kind, internetDateTime(start), "", ""};
  if (end) {
    fields[2] = internetDateTime(*end);
    fields[3] = secondsText(std::max(0.0, secondsBetween(start, *end)));
  }
  fields.insert(fields.end(), texts.begin(), texts.end());
  return csvLine(fields, isRaw);
}

void exportCsv(History& history, const DayRange& range, bool isRaw) {
  LargeOutput out;
  out.add("kind,start,end,seconds,application,bundle_id,text\r\n");
  history.visitSessions(range, [&](const Activity& session) {
    out.add(exportLine("session", session.startTime, session.endTime,
                       {session.appName, session.bundleID.value_or(""), session.title.value_or("")},
                       isRaw));
  });
  history.visitNotes(range, [&](const Annotation& note) {
    out.add(exportLine("note", note.startedAt, note.endedAt, {"", "", note.text}, isRaw));
  });
  out.flush();
}

// One object; an entry a line.
void exportJson(History& history, const DayRange& range) {
  LargeOutput out;
  const char* separator = "\n";
  const auto add = [&](const json::Value& value) {
    out.add(separator + json::compact(value));
    separator = ",\n";
  };
  out.add("{\"activities\":[");
  history.visitSessions(range, [&](const Activity& session) { add(toJson(session)); });
  out.add("\n],\"annotations\":[");
  separator = "\n";
  history.visitNotes(range, [&](const Annotation& note) { add(toJson(note)); });
  out.add("\n]}\n");
  out.flush();
}

}  // namespace

void addExportCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("export", "Write the history to standard output");
  const auto options = std::make_shared<ExportOptions>();
  addDaysOptions(*command, options->days);
  command->add_option("--format", options->format, "csv or json")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"csv", "json"}));
  command->add_flag(
      "--raw", options->isRaw,
      "in CSV, write texts that a spreadsheet would compute (such as =1+1) as they are, "
      "without an apostrophe before them");
  command->footer(
      "Without days, all of it. Times are in UTC. A day holds what began on it, in local time. A "
      "file\n"
      "that it is written to becomes readable for you alone.\n\n"
      "Examples:\n"
      "  Tessum export > history.csv\n"
      "  Tessum export 2025-03 --format json > march.json\n"
      "  Tessum export --from 2025-03-04 > since.csv");
  command->callback([&host, options] {
    const DayRange range = daysArgument(options->days, host);
    History history(historyPath(host.locations), History::Access::read);
    closeOutputToOthers();
    if (options->format == "json") {
      exportJson(history, range);
    } else {
      exportCsv(history, range, options->isRaw);
    }
  });
}

}  // namespace tessum
