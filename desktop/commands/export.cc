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
};

// Text on its way to standard output, written in large pieces.
class Writer {
 public:
  void add(std::string_view text) {
    constexpr std::size_t kPiece = 1 << 16;
    pending_ += text;
    if (pending_.size() >= kPiece) flush();
  }
  void flush() {
    print(pending_);
    pending_.clear();
  }

 private:
  std::string pending_;
};

// A field of a comma-separated line, in quotes where it needs them.
std::string csvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + '"';
}

// Thousandths of a second are more than anyone measured.
std::string secondsText(double seconds) {
  return json::numberText(std::round(seconds * 1000) / 1000);
}

std::string csvLine(std::string_view kind, Date start, const std::optional<Date>& end,
                    std::string_view appName, std::string_view bundleID, std::string_view text) {
  std::string line(kind);
  line += ',' + internetDateTime(start) + ',';
  if (end) line += internetDateTime(*end);
  line += ',';
  if (end) line += secondsText(std::max(0.0, secondsBetween(start, *end)));
  line += ',' + csvField(appName) + ',' + csvField(bundleID) + ',' + csvField(text) + "\r\n";
  return line;
}

// Lines end with a carriage return and a line feed, as the format's readers expect.
void exportCsv(History& history, const DayRange& range) {
  Writer out;
  out.add("kind,start,end,seconds,application,bundle_id,text\r\n");
  history.visitSessions(range, [&](const Activity& session) {
    out.add(csvLine("session", session.startTime, session.endTime, session.appName,
                    session.bundleID.value_or(""), session.title.value_or("")));
  });
  history.visitNotes(range, [&](const Annotation& note) {
    out.add(csvLine("note", note.startedAt, note.endedAt, "", "", note.text));
  });
  out.flush();
}

// One object; an entry a line.
void exportJson(History& history, const DayRange& range) {
  Writer out;
  const char* separator = "\n";
  const auto add = [&](const json::Value& value) {
    out.add(separator);
    out.add(json::compact(value));
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
  command->footer(
      "Times are in UTC. A day holds what began on it, in local time.\n\n"
      "Examples:\n"
      "  Tessum export > history.csv\n"
      "  Tessum export --from 2025-03-01 --to 2025-03-31 --format json > march.json");
  command->callback([&host, options] {
    const DayRange range = daysArgument(options->from, options->to, host);
    History history(historyPath(host.locations), History::Access::read);
    if (options->format == "json") {
      exportJson(history, range);
    } else {
      exportCsv(history, range);
    }
  });
}

}  // namespace tessum
