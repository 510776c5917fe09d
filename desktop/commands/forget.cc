#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/base/text.h"
#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/filter_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/forget_hidden.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/settings/settings_file.h"
#include "desktop/timeline/page.h"

namespace tessum {
namespace {

struct ForgetOptions {
  DaysOptions days;
  FilterOptions filter;
  bool isOfHidden = false;
  bool isSure = false;
};

// `settings` must outlive the selection.
Selection selectionOf(const Host& host, const ForgetOptions& options, const Settings& settings) {
  Selection selection;
  if (options.days.period || !options.days.from.empty()) {
    selection.begun = daysArgument(options.days, host);
  }
  selection.isMeant = sessionTestOf(options.filter, settings.rules);
  if (!selection.begun && !selection.isMeant) {
    throw CLI::ValidationError(
        "say what to forget: days such as 2025-03-04, or --app, --title, --category or --hidden");
  }
  return selection;
}

// The rest of a sentence that says what will be deleted.
std::string description(const ForgetOptions& options, const Selection& selection,
                        const Selected& selected) {
  std::string text = counted(selected.sessions, "session");
  if (selected.sessions > 0) {
    text += " (" + shortDuration(selected.seconds) + ")";
  }
  if (selection.includesNotes()) text += " and " + counted(selected.notes, "note");
  const std::string narrowing = narrowingText(options.filter);
  if (!narrowing.empty()) text += " " + narrowing;
  const std::string first = dateText(*selected.first);
  const std::string last = dateText(*selected.last);
  return text + (first == last ? ", begun on " + first : ", begun from " + first + " to " + last);
}

void forget(Host& host, const ForgetOptions& options) {
  const Settings settings = loadSettings(host.locations, host.files);
  const Selection selection = selectionOf(host, options, settings);
  History history(historyPath(host.locations), History::Access::write);
  const Selected selected = history.select(selection);
  if (selected.sessions == 0 && selected.notes == 0) {
    print("Nothing of that kind is in the history.\n");
    return;
  }
  print("This deletes " + description(options, selection, selected) + ".\n");
  if (!options.isSure && !askYesOrNo("It cannot be undone. Delete?")) {
    print("Nothing was deleted.\n");
    host.status = kFailure;
    return;
  }
  history.forget(selection, selected);
  removeTimeline(host.locations);
  print("Deleted.\n");
  history.writeAnew();
}

}  // namespace

void addForgetCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("forget", "Delete sessions and notes for good");
  const auto options = std::make_shared<ForgetOptions>();
  addDaysOptions(*command, options->days);
  command->get_option("--from")->needs(command->get_option("--to"));
  command->get_option("--to")->needs(command->get_option("--from"));
  addFilterOptions(*command, options->filter);
  command->add_flag("--hidden", options->isOfHidden, "what the rules of today's settings hide")
      ->excludes("PERIOD", "--from", "--to", "--app", "--title", "--category");
  command->add_flag("--yes", options->isSure, "delete without asking");
  command->footer(
      "Says what it will delete, then asks. Days alone delete the sessions and the notes that\n"
      "began on them; with --app, --title or --category only sessions go. Copies made with backup\n"
      "or export are not touched. With --hidden the history becomes what it would be under the\n"
      "rules of the settings: sessions go, lose their titles, or are cut where a schedule begins\n"
      "or ends.\n\n"
      "Examples:\n"
      "  Tessum forget yesterday\n"
      "  Tessum forget 2025-03-04..2025-03-05 --app Terminal\n"
      "  Tessum forget --app Terminal\n"
      "  Tessum forget --title \"secret project\" --yes\n"
      "  Tessum forget --hidden");
  command->callback([&host, options] {
    if (options->isOfHidden) return forgetHidden(host, options->isSure);
    forget(host, *options);
  });
}

}  // namespace tessum
