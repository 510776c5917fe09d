#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/base/text.h"
#include "core/platform/private_files.h"
#include "core/store/database.h"
#include "core/store/history.h"
#include "desktop/commands/arguments.h"
#include "desktop/commands/standard_output.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

struct NoteOptions {
  std::string text;
  std::string duration;
  bool ends = false;
};

// Deletes the open notes that began at `start` or later, because the new note replaces them
// completely. Returns sentences that say so.
std::string replaceNotesBegunFrom(Date start, const Host& host) {
  History history(historyPath(host.locations), History::Access::write);
  std::string text;
  for (const Annotation& note : history.openNotes()) {
    if (secondsBetween(start, note.startedAt) < 0) continue;
    history.deleteNote(note.id.value_or(0));
    text += "It takes the place of " + printable(note.text) + ", begun at " +
            clockText(note.startedAt) + ".\n";
  }
  return text;
}

void startNote(const Host& host, const NoteOptions& options) {
  const std::string given = validUtf8(options.text);
  const std::string text(trimWhiteSpace(given));
  if (text.empty()) {
    throw CLI::ValidationError("say what you are working on, or end the note with --end");
  }
  const double seconds = options.duration.empty() ? 0 : durationArgument(options.duration);
  const Date start = movedBy(host.clock.now(), -seconds);
  if (start.secondsSince1970 < kStartOfYearOne.secondsSince1970) {
    throw CLI::ValidationError("the duration \"" + options.duration + "\" is too long");
  }
  createPrivateFolders(host.locations.dataFolder());
  Database database(historyPath(host.locations), host.calendar);
  const std::string replaced = replaceNotesBegunFrom(start, host);
  database.insertAnnotation({.id = {}, .text = text, .startedAt = start, .endedAt = {}});
  print("Note started: " + printable(text) + " (since " + clockText(start) + ")\n" + replaced);
}

void endNote(const Host& host) {
  History history(historyPath(host.locations), History::Access::read);
  const auto open = history.openNotes();
  if (open.empty()) {
    print("There is no note to end.\n");
    return;
  }
  Database database(historyPath(host.locations), host.calendar);
  database.endCurrentAnnotation(host.clock.now());
  print("Note ended: " + printable(open.front().text) + "\n");
}

}  // namespace

void addNoteCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("note", "Say what you are working on");
  const auto options = std::make_shared<NoteOptions>();
  auto* text = command->add_option("TEXT", options->text, "what you are working on from now on")
                   ->type_name("");
  auto* duration =
      command
          ->add_option("--for", options->duration, "how long you have been at it: 1h30m, 45m or 90")
          ->type_name("DURATION");
  command->add_flag("--end", options->ends, "end the current note")
      ->excludes(text)
      ->excludes(duration);
  command->footer(
      "Examples:\n"
      "  Tessum note \"Review of the budget\"\n"
      "  Tessum note \"Call with Ada\" --for 20m\n"
      "  Tessum note --end");
  command->callback([&host, options] {
    if (options->ends) {
      endNote(host);
    } else {
      startNote(host, *options);
    }
  });
}

}  // namespace tessum
