#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <string_view>

#include "core/json/number.h"
#include "core/json/writer.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/commands/arguments.h"
#include "desktop/commands/standard_output.h"

namespace tessum {
namespace {

struct ExportOptions {
  std::string from;
  std::string to;
  std::string format = "csv";
  bool isRaw = false;
};

// A buffer that writes text to standard output in large pieces.
class Writer {
 public:
  void add(std::string_view text) {
    constexpr std::size_t kPiece = 1 << 16;
    pending_ += text;
    if (pending_.size() >= kPiece) flush();
  }
  void flush() {
    printForeign(pending_);
    pending_.clear();
  }

 private:
  std::string pending_;
};

// Whether a spreadsheet takes the text for a formula and computes it: a title could have it send
// the other fields elsewhere.
bool isFormula(std::string_view text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

// A field of a comma-separated line, in quotes where it needs them, and with an apostrophe before a
// formula unless it is to be `raw`.
std::string csvField(std::string_view text, bool isRaw) {
  const std::string before = !isRaw && isFormula(text) ? "'" : "";
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return before + std::string(text);
  std::string field = "\"" + before;
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + '"';
}

// A millisecond is finer than anything we measure.
std::string secondsText(double seconds) {
  return json::numberText(std::round(seconds * 1000) / 1000);
}

// One session or note.
struct Line {
  std::string_view kind;
  Date start;
  std::optional<Date> end;
  std::string_view appName;
  std::string_view bundleID;
  std::string_view text;
};

// It ends with a carriage return and a line feed, as the format's readers expect.
std::string csvLine(const Line& line, bool isRaw) {
  std::string csv(line.kind);
  csv += ',' + internetDateTime(line.start) + ',';
  if (line.end) csv += internetDateTime(*line.end);
  csv += ',';
  if (line.end) csv += secondsText(std::max(0.0, secondsBetween(line.start, *line.end)));
  for (const std::string_view text : {line.appName, line.bundleID, line.text}) {
    csv += ',' + csvField(text, isRaw);
  }
  return csv + "\r\n";
}

void exportCsv(History& history, const DayRange& range, bool isRaw) {
  Writer out;
  out.add("kind,start,end,seconds,application,bundle_id,text\r\n");
  history.visitSessions(range, [&](const Activity& session) {
    out.add(csvLine({.kind = "session",
                     .start = session.startTime,
                     .end = session.endTime,
                     .appName = session.appName,
                     .bundleID = session.bundleID ? *session.bundleID : std::string_view(),
                     .text = session.title ? *session.title : std::string_view()},
                    isRaw));
  });
  history.visitNotes(range, [&](const Annotation& note) {
    out.add(csvLine({.kind = "note",
                     .start = note.startedAt,
                     .end = note.endedAt,
                     .appName = "",
                     .bundleID = "",
                     .text = note.text},
                    isRaw));
  });
  out.flush();
}

// One object; an entry a line.
void exportJson(History& history, const DayRange& range) {
  Writer out;
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
  command->add_option("--from", options->from, "the first day; all from the beginning if absent")
      ->type_name("DATE");
  command->add_option("--to", options->to, "the last day; all up to now if absent")
      ->type_name("DATE");
  command->add_option("--format", options->format, "csv or json")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"csv", "json"}));
  command->add_flag(
      "--raw", options->isRaw,
      "in CSV, write texts that a spreadsheet would compute (such as =1+1) as they are, "
      "without an apostrophe before them");
  command->footer(
      "Times are in UTC. A day holds what began on it, in local time. A file that it is written "
      "to\n"
      "becomes readable for you alone.\n\n"
      "Examples:\n"
      "  Tessum export > history.csv\n"
      "  Tessum export --from 2025-03-01 --to 2025-03-31 --format json > march.json");
  command->callback([&host, options] {
    const DayRange range = daysArgument(options->from, options->to, host);
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
