// What the shells complete, a line each. The completions of bash, zsh and fish run this command, so
// people need not see it in the list of commands.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/store/history.h"
#include "desktop/clients/assistants.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/settings/settings_file.h"
#include "desktop/text/text_layout.h"
#include "desktop/usage/session_filter.h"

namespace tessum {
namespace {

using WordList = std::vector<std::string>;

// Without a history there are no words from it.
bool hasHistory(const Host& host) {
  return host.files.exists(historyPath(host.locations));
}

// The years from `first` to `last`; the months of a year, or the days of a month, once `begin`
// names it.
WordList datesBetween(const CalendarDate& first, const CalendarDate& last,
                      const std::string& begin) {
  const std::size_t length = begin.size() < 5 ? 4 : begin.size() < 8 ? 7 : 10;
  WordList words;
  for (CalendarDate day = first; daysBetween(day, last) >= 0; day = daysAfter(day, 1)) {
    const std::string text = dateText(day).substr(0, length);
    if (words.empty() || words.back() != text) words.push_back(text);
  }
  return words;
}

WordList periods(const Host& host, const std::string& begin) {
  WordList words = periodWords();
  if (!hasHistory(host)) return words;
  const auto range = History(historyPath(host.locations), History::Access::read).beginnings();
  if (!range) return words;
  const ReportDays days = reportDays(host);
  const WordList dates = datesBetween(days.dayOf(range->start), days.dayOf(range->end), begin);
  words.insert(words.end(), dates.begin(), dates.end());
  return words;
}

WordList applications(const Host& host, const std::string&) {
  if (!hasHistory(host)) return {};
  return History(historyPath(host.locations), History::Access::read).appNames();
}

WordList categories(const Host& host, const std::string&) {
  std::set<std::string> names;
  for (const Category& category : loadSettings(host.locations, host.files).rules.categories) {
    names.insert(category.name);
  }
  names.insert(std::string(kUncategorised));
  return {names.begin(), names.end()};
}

WordList clients(const Host& host, const std::string&) {
  WordList names;
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    names.emplace_back(assistant.id);
  }
  return names;
}

struct Kind {
  const char* name;
  WordList (*words)(const Host& host, const std::string& begin);
};
constexpr Kind kKinds[] = {{"applications", applications},
                           {"categories", categories},
                           {"clients", clients},
                           {"periods", periods}};

void complete(const Host& host, const std::string& name, const std::string& begin) {
  const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                 [&](const Kind& known) { return known.name == name; });
  if (kind == std::end(kKinds)) {
    throw CLI::ValidationError("nothing to complete is called \"" + name + "\"");
  }
  std::string text;
  for (const std::string& word : kind->words(host, begin)) {
    // A line is one word, and what a terminal cannot show cannot be typed.
    if (printable(word) == word) text += word + "\n";
  }
  print(text);
}

}  // namespace

void addCompleteCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("complete", "Print the words that shells complete");
  command->group("");
  const auto kind = std::make_shared<std::string>();
  command->add_option("KIND", *kind, "applications, categories, clients or periods")
      ->type_name("")
      ->required();
  const auto begin = std::make_shared<std::string>();
  command
      ->add_option(
          "WORD", *begin,
          "what has been typed of it: the months of a year and the days of a month are shown "
          "once it is typed")
      ->type_name("");
  command->footer(
      "Examples:\n"
      "  Tessum complete applications\n"
      "  Tessum complete periods 2025-");
  command->callback([&host, kind, begin] { complete(host, *kind, *begin); });
}

}  // namespace tessum
