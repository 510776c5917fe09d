#include <CLI/CLI.hpp>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "core/base/limits.h"
#include "core/base/text.h"
#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/filter_options.h"
#include "desktop/command_line/plain_report.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/command_line/text_search.h"
#include "desktop/commands/commands.h"
#include "desktop/reports/finds_report.h"
#include "desktop/settings/settings_file.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

struct SearchOptions {
  std::vector<std::string> words;
  std::string period;
  std::int64_t limit = limits::kSearchResultsPerCall;
  FilterOptions filter;
  DataOptions data;
  bool isPlain = false;
};

std::vector<std::string> validWords(const std::vector<std::string>& words) {
  std::vector<std::string> valid;
  for (const std::string& word : words) valid.push_back(validUtf8(word));
  return valid;
}

void searchPlain(const Host& host, const SearchOptions& options) {
  // The tools leave out what they cannot read; a person should be told.
  History history(historyPath(host.locations), History::Access::read);
  history.visitSessions(kAllTimes, [](const Activity&) {});
  std::string query;
  for (const std::string& word : validWords(options.words)) {
    query += (query.empty() ? "" : " ") + word;
  }
  printForeign(toolText(host, "search_activities", {.limit = options.limit, .query = query}));
}

// Visits the sessions found, the oldest first, cut at the edges of `range`.
void visitFound(const Host& host, const SearchOptions& options, const Settings& settings,
                const DayRange& range, Date now,
                const std::function<void(const Activity&)>& visit) {
  const Words words(validWords(options.words));
  const SessionFilter filter = filterOf(options.filter, settings.rules);
  CategoryFinder categories(settings.rules);
  History history(historyPath(host.locations), History::Access::read);
  history.visitSessionsIn(range, now, [&](const Activity& session) {
    if (words.areIn(session) && passes(filter, session, categories)) {
      visit(cutTo(range, session, now));
    }
  });
}

void search(const Host& host, const SearchOptions& options) {
  if (options.isPlain) return searchPlain(host, options);
  const Settings settings = loadSettings(host.locations, host.files);
  std::optional<Period> period;
  DayRange range = kAllTimes;
  if (!options.period.empty()) {
    const ReportDays days(host.calendar, settings.dayStarts.value);
    period = periodArgument(options.period, host, days);
    range = days.rangeOf(*period);
  }
  const Date now = host.clock.now();
  const auto most = static_cast<std::size_t>(options.limit);
  Finds finds;
  std::deque<Activity> newest;
  visitFound(host, options, settings, range, now, [&](const Activity& session) {
    finds.add(session, now);
    newest.push_back(session);
    if (newest.size() > most) newest.pop_front();
  });
  const auto format = formatOf(options.data);
  if (!format) return print(findsReport(finds, most, standardOutputPaper()));
  const TextSink sink = printForeign;
  RecordData data(*format, "search", period, range, now, sink);
  for (auto session = newest.rbegin(); session != newest.rend(); ++session) data.add(*session);
  data.finish(finds, most);
}

}  // namespace

void addSearchCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("search", "Sessions of all days by application or title");
  const auto options = std::make_shared<SearchOptions>();
  command
      ->add_option("WORD", options->words,
                   "words that are all in the application's name or the title, in any order, in "
                   "capital or small letters; in quotes, several are one phrase; with --plain, % "
                   "and _ stand for any text and any character")
      ->type_name("")
      ->required();
  command->add_option("--limit", options->limit, "the most lines to show")
      ->type_name("N")
      ->capture_default_str()
      ->check(CLI::Range(1, 1000000));
  auto* in = command->add_option("--in", options->period, "only sessions of these days; see day");
  in->type_name("PERIOD");
  addPlainOption(*command, options->isPlain, "search_activities");
  in->excludes("--plain");
  addFilterOptions(*command, options->filter);
  addDataOptions(*command, options->data);
  command->footer(
      "Shows each application and title that was found: when it was last in front, and how long\n"
      "in all.\n\n"
      "Examples:\n"
      "  Tessum search invoice\n"
      "  Tessum search invoice march --in 2025\n"
      "  Tessum search \"pull request\" --app Browser --limit 200");
  command->callback([&host, options] { search(host, *options); });
}

}  // namespace tessum
