#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/json/writer.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/filter_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/data/csv.h"
#include "desktop/settings/settings_file.h"

namespace tessum {
namespace {

struct ExportOptions {
  DaysOptions days;
  FilterOptions filter;
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

// What is exported: the sessions that began in `range` and are meant, and where no test narrows
// them, the notes.
struct Extent {
  DayRange range;
  SessionTest isMeant;
};

void visitSessions(History& history, const Extent& extent,
                   const std::function<void(const Activity&)>& visit) {
  history.visitSessions(extent.range, [&](const Activity& session) {
    if (!extent.isMeant || extent.isMeant(session)) visit(session);
  });
}

void visitNotes(History& history, const Extent& extent,
                const std::function<void(const Annotation&)>& visit) {
  if (!extent.isMeant) history.visitNotes(extent.range, visit);
}

void exportCsv(History& history, const Extent& extent, bool isRaw) {
  LargeOutput out;
  out.add("kind,start,end,seconds,application,bundle_id,text\r\n");
  visitSessions(history, extent, [&](const Activity& session) {
    out.add(exportLine("session", session.startTime, session.endTime,
                       {session.appName, session.bundleID.value_or(""), session.title.value_or("")},
                       isRaw));
  });
  visitNotes(history, extent, [&](const Annotation& note) {
    out.add(exportLine("note", note.startedAt, note.endedAt, {"", "", note.text}, isRaw));
  });
  out.flush();
}

// One object; an entry a line.
void exportJson(History& history, const Extent& extent) {
  LargeOutput out;
  const char* separator = "\n";
  const auto add = [&](const json::Value& value) {
    out.add(separator + json::compact(value));
    separator = ",\n";
  };
  out.add("{\"activities\":[");
  visitSessions(history, extent, [&](const Activity& session) { add(toJson(session)); });
  out.add("\n],\"annotations\":[");
  separator = "\n";
  visitNotes(history, extent, [&](const Annotation& note) { add(toJson(note)); });
  out.add("\n]}\n");
  out.flush();
}

}  // namespace

void addExportCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("export", "Write the history to standard output");
  const auto options = std::make_shared<ExportOptions>();
  addDaysOptions(*command, options->days);
  addFilterOptions(*command, options->filter);
  command->add_option("--format", options->format, "csv or json")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"csv", "json"}));
  command->add_flag(
      "--raw", options->isRaw,
      "in CSV, write texts that a spreadsheet would compute (such as =1+1) as they are, "
      "without an apostrophe before them");
  command->footer(
      "Without days, all of it. With --app, --title or --category only such sessions, and no\n"
      "notes. Times are in UTC. A day holds what began on it, in local time. The file that the\n"
      "output goes to becomes readable for you alone.\n\n"
      "Examples:\n"
      "  Tessum export > history.csv\n"
      "  Tessum export 2025-03 --format json > march.json\n"
      "  Tessum export --from 2025-03-04 > since.csv");
  command->callback([&host, options] {
    const Settings settings = loadSettings(host.locations, host.files);
    const Extent extent{daysArgument(options->days, host),
                        sessionTestOf(options->filter, settings.rules)};
    History history(historyPath(host.locations), History::Access::read);
    closeOutputToOthers();
    if (options->format == "json") {
      exportJson(history, extent);
    } else {
      exportCsv(history, extent, options->isRaw);
    }
  });
}

}  // namespace tessum
