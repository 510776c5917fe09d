#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/filter_options.h"
#include "desktop/command_line/plain_report.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/reports/day_report.h"
#include "desktop/settings/settings_file.h"

namespace tessum {
namespace {

struct ReportOptions {
  std::string period;
  FilterOptions filter;
  DataOptions data;
  bool isPlain = false;
};

// What a report is about, as the command line says it.
struct Subject {
  ReportDays days;
  Period period;
  DayRange range;
  SessionFilter filter;
  Date now;
};

Subject subjectOf(const Host& host, const ReportOptions& options, const Settings& settings) {
  const ReportDays days(host.calendar, settings.dayStarts.value);
  const Period period = periodArgument(options.period, host, days);
  return {.days = days,
          .period = period,
          .range = days.rangeOf(period),
          .filter = filterOf(options.filter, settings.rules),
          .now = host.clock.now()};
}

DayHistory filteredDay(History& history, const Subject& subject, const CalendarDate& date,
                       CategoryFinder& categories) {
  DayHistory day = readDay(history, subject.days, date, subject.now);
  const auto leftOut = std::erase_if(day.sessions, [&](const Activity& session) {
    return !passes(subject.filter, session, categories);
  });
  day.leavesOutSome = leftOut > 0;
  if (!subject.filter.isEmpty()) day.away.clear();  // the other sessions fill the time between
  return day;
}

// Prints each day that has records.
void printDays(History& history, const Subject& subject, CategoryFinder& categories) {
  const Paper paper = standardOutputPaper();
  const Period recorded = recordedDays(history, subject.period, subject.days, subject.now);
  const char* separator = "";
  bool leavesOutSome = false;
  for (CalendarDate date = recorded.first; daysBetween(date, recorded.last) >= 0;
       date = daysAfter(date, 1)) {
    const DayHistory day = filteredDay(history, subject, date, categories);
    leavesOutSome = leavesOutSome || day.leavesOutSome;
    if (day.sessions.empty() && day.notes.empty()) continue;
    print(separator + dayReport(day, paper));
    separator = "\n";
  }
  if (*separator == '\0') {
    print(longPeriodText(subject.period) + "\n\n" +
          nothingRecordedText(leavesOutSome, dayCount(subject.period)) + "\n");
  }
}

void showDays(const Host& host, const ReportOptions& options) {
  const Settings settings = loadSettings(host.locations, host.files);
  const Subject subject = subjectOf(host, options, settings);
  CategoryFinder categories(settings.rules);
  History history(historyPath(host.locations), History::Access::read);
  if (const auto format = formatOf(options.data)) {
    LargeOutput out;
    const TextSink sink = [&](std::string_view text) { out.add(text); };
    RecordData data(*format, "day", subject.period, subject.range, subject.now, sink);
    history.visitSessionsIn(subject.range, subject.now, [&](const Activity& session) {
      if (passes(subject.filter, session, categories)) data.add(session);
    });
    for (const Annotation& note : history.notesIn(subject.range)) data.add(note);
    data.finish();
    out.flush();
    return;
  }
  if (dayCount(subject.period) > 1) return printDays(history, subject, categories);
  print(dayReport(filteredDay(history, subject, subject.period.first, categories),
                  standardOutputPaper()));
}

void showNotes(const Host& host, const ReportOptions& options) {
  const Subject subject = subjectOf(host, options, loadSettings(host.locations, host.files));
  History history(historyPath(host.locations), History::Access::read);
  const auto notes = history.notesIn(subject.range);
  if (const auto format = formatOf(options.data)) {
    const TextSink sink = printForeign;
    RecordData data(*format, "notes", subject.period, subject.range, subject.now, sink);
    for (const Annotation& note : notes) data.add(note);
    data.finish();
    return;
  }
  print(notesReport(subject.period, subject.range, notes, subject.now, standardOutputPaper()));
}

using Show = void (*)(const Host&, const ReportOptions&);

// What distinguishes the reports of a period.
struct Form {
  const char* name;
  const char* description;
  const char* tool;
  Show show;
};

CLI::App& addReport(CLI::App& app, Host& host, const Form& form,
                    const std::shared_ptr<ReportOptions>& options) {
  auto* command = app.add_subcommand(form.name, form.description);
  addPeriodArgument(*command, options->period);
  addPlainOption(*command, options->isPlain, form.tool);
  addDataOptions(*command, options->data);
  command->callback([&host, options, form] {
    options->isPlain ? showPlain(host, options->period, form.tool) : form.show(host, *options);
  });
  return *command;
}

void addDayCommand(CLI::App& app, Host& host) {
  const auto options = std::make_shared<ReportOptions>();
  auto& command = addReport(
      app, host,
      {"day", "What was in front on each day, with its notes", "get_activities", showDays},
      options);
  addFilterOptions(command, options->filter);
  command.footer(
      "Examples:\n"
      "  Tessum day\n"
      "  Tessum day yesterday\n"
      "  Tessum day 2025-03-03..2025-03-05 --app Terminal\n"
      "  Tessum day 2025-03-04 --json\n"
      "  Tessum day 2025-03-04 --plain");
}

void addNotesCommand(CLI::App& app, Host& host) {
  const auto options = std::make_shared<ReportOptions>();
  auto& command = addReport(
      app, host, {"notes", "The notes of some days", "get_annotations", showNotes}, options);
  command.footer(
      "Examples:\n"
      "  Tessum notes\n"
      "  Tessum notes yesterday\n"
      "  Tessum notes 2025-03 --csv");
}

}  // namespace

void addReportCommands(CLI::App& app, Host& host) {
  addDayCommand(app, host);
  addNotesCommand(app, host);
}

}  // namespace tessum
