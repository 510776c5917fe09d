#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/base/text.h"
#include "core/platform/private_files.h"
#include "core/store/database.h"
#include "core/store/history.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/settings/schedule.h"

namespace tessum {
namespace {

struct NoteOptions {
  std::vector<std::string> words;
  std::string duration;
  std::string hours;
  std::optional<std::int64_t> edited;
  std::optional<std::int64_t> deleted;
  bool ends = false;
};

// The words as one text; empty where there are only blanks.
std::string textOf(const NoteOptions& options) {
  std::string text;
  for (const std::string& word : options.words) text += (text.empty() ? "" : " ") + word;
  text = validUtf8(text);
  return std::string(trimWhiteSpace(text));
}

std::string timesText(const Annotation& note) {
  const std::string start = dateText(note.startedAt) + " " + clockText(note.startedAt);
  if (!note.endedAt) return start + " until now";
  const bool isOnOneDay = dateText(*note.endedAt) == dateText(note.startedAt);
  return start + "-" + (isOnOneDay ? "" : dateText(*note.endedAt) + " ") + clockText(*note.endedAt);
}

std::string description(const Annotation& note) {
  return "note " + std::to_string(note.id.value_or(0)) + ", \"" + printable(note.text) + "\", " +
         timesText(note);
}

std::runtime_error overlap(const Annotation& other) {
  return std::runtime_error("it would overlap " + description(other));
}

// From the first to the second time of day in a text such as 10:00-11:30 or yesterday 10:00-11:30.
// Without a day it is the report day of `usual`.
DayRange hoursArgument(const std::string& text, const Host& host, Date usual) {
  const std::string_view trimmed = trimWhiteSpace(text);
  const auto blank = trimmed.rfind(' ');
  const bool hasDay = blank != std::string_view::npos;
  const auto hours = parseHours(hasDay ? trimmed.substr(blank + 1) : trimmed);
  if (!hours) {
    throw CLI::ValidationError("unknown times \"" + printable(validUtf8(text)) +
                               "\"; write them as 10:00-11:30 or yesterday 10:00-11:30");
  }
  const ReportDays days = reportDays(host);
  CalendarDate day = days.dayOf(usual);
  if (hasDay) {
    const Period period =
        periodArgument(std::string(trimBlanks(trimmed.substr(0, blank))), host, days);
    if (dayCount(period) > 1) throw CLI::ValidationError("a note begins on one day");
    day = period.first;
  }
  constexpr int kMinutesOfDay = 24 * 60;
  const Date start = nextTimeOfDay(hours->begin % kMinutesOfDay, movedBy(days.startOf(day), -1));
  return {start, nextTimeOfDay(hours->end % kMinutesOfDay, start)};
}

// The notes that a new one from `start` on would cut or replace: the current note, and those that
// it followed at once. Throws where a note that is over has some of the time.
std::vector<Annotation> notesInTheWay(History& history, Date start, Date now) {
  auto notes = history.notesIn({start, movedBy(now, 1)});
  std::reverse(notes.begin(), notes.end());
  std::optional<Date> next;  // where the replaced note begins
  for (const Annotation& note : notes) {
    const bool isCurrent = !note.endedAt || secondsBetween(now, *note.endedAt) > 0;
    if (!isCurrent && note.endedAt != next) throw overlap(note);
    next = note.startedAt;
  }
  return notes;
}

// Ends the current note at `start`, where a new one begins, or deletes it if it began later.
// Returns sentences that say so.
std::string makeRoom(History& history, Date start, Date now) {
  std::string text;
  for (Annotation& note : notesInTheWay(history, start, now)) {
    if (secondsBetween(start, note.startedAt) >= 0) {
      history.deleteNote(note.id.value_or(0));
      text += "It takes the place of " + printable(note.text) + ", begun at " +
              clockText(note.startedAt) + ".\n";
    } else if (note.endedAt) {  // an open one ends with the beginning of the new one
      note.endedAt = start;
      history.putNote(note, now);
    }
  }
  return text;
}

void startNote(const Host& host, const NoteOptions& options) {
  const std::string text = textOf(options);
  if (text.empty()) {
    throw CLI::ValidationError("say what you are working on, or end the note with --end");
  }
  const double seconds = options.duration.empty() ? 0 : durationArgument(options.duration);
  const Date now = host.clock.now();
  const Date start = movedBy(now, -seconds);
  if (start.secondsSince1970 < kStartOfYearOne.secondsSince1970) {
    throw CLI::ValidationError("the duration \"" + options.duration + "\" is too long");
  }
  createPrivateFolders(host.locations.dataFolder());
  Database database(historyPath(host.locations), host.calendar);
  std::string replaced;
  {
    History history(historyPath(host.locations), History::Access::write);
    replaced = makeRoom(history, start, now);
  }
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

void put(History& history, const Annotation& note, Date now) {
  try {
    history.putNote(note, now);
  } catch (const NotesOverlap& error) {
    throw overlap(error.other());
  }
}

void addNote(const Host& host, const NoteOptions& options) {
  const std::string text = textOf(options);
  if (text.empty()) throw CLI::ValidationError("say what you were working on");
  const Date now = host.clock.now();
  const DayRange times = hoursArgument(options.hours, host, now);
  const Annotation note{.id = {}, .text = text, .startedAt = times.start, .endedAt = times.end};
  createPrivateFolders(host.locations.dataFolder());
  { const Database made(historyPath(host.locations), host.calendar); }
  History history(historyPath(host.locations), History::Access::write);
  put(history, note, now);
  print("Note added: " + printable(text) + " (" + timesText(note) + ")\n");
}

// The note with that number, of those that "Tessum notes" shows.
Annotation noteOf(History& history, std::int64_t number) {
  if (auto note = history.note(number)) return std::move(*note);
  throw std::runtime_error("there is no note " + std::to_string(number) +
                           "; \"Tessum notes PERIOD\" shows the numbers");
}

void editNote(const Host& host, const NoteOptions& options) {
  const std::string text = textOf(options);
  if (text.empty() && options.hours.empty()) {
    throw CLI::ValidationError("say what the note is to be, or when it was with --at");
  }
  History history(historyPath(host.locations), History::Access::write);
  Annotation note = noteOf(history, *options.edited);
  if (!text.empty()) note.text = text;
  if (!options.hours.empty()) {
    const DayRange times = hoursArgument(options.hours, host, note.startedAt);
    note.startedAt = times.start;
    note.endedAt = times.end;
  }
  put(history, note, host.clock.now());
  print("Note " + std::to_string(*options.edited) + " is now: " + printable(note.text) + " (" +
        timesText(note) + ")\n");
}

void deleteNote(const Host& host, std::int64_t number) {
  History history(historyPath(host.locations), History::Access::write);
  const Annotation note = noteOf(history, number);
  history.deleteNote(number);
  print("Deleted: " + description(note) + "\n");
  history.writeAnew();
}

void runNote(const Host& host, const NoteOptions& options) {
  if (options.ends) return endNote(host);
  if (options.deleted) return deleteNote(host, *options.deleted);
  if (options.edited) return editNote(host, options);
  if (!options.hours.empty()) return addNote(host, options);
  startNote(host, options);
}

}  // namespace

void addNoteCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("note", "Say what you are working on, or correct a note");
  const auto options = std::make_shared<NoteOptions>();
  auto* text = command->add_option("TEXT", options->words, "what you are working on from now on")
                   ->type_name("");
  auto* duration = command->add_option("--for", options->duration,
                                       "how long you have been at it: 1h30m, 45m or 90");
  duration->type_name("DURATION");
  auto* at = command->add_option(
      "--at", options->hours,
      "when you were at it, today or on a day before: 10:00-11:30 or \"yesterday 10:00-11:30\"");
  at->type_name("TIMES")->excludes(duration);
  auto* edit = command->add_option(
      "--edit", options->edited,
      "give this note another TEXT, or other times with --at; \"Tessum notes\" shows the numbers");
  edit->type_name("NUMBER")->excludes(duration);
  auto* remove = command->add_option("--delete", options->deleted, "delete this note for good");
  remove->type_name("NUMBER");
  auto* end = command->add_flag("--end", options->ends, "end the current note");
  for (auto* alone : {remove, end}) {
    for (auto* other : {text, duration, at, edit}) alone->excludes(other);
  }
  remove->excludes(end);
  command->footer(
      "Notes do not overlap: a new one ends the current one where it begins, and one that would\n"
      "take the time of another is refused.\n\n"
      "Examples:\n"
      "  Tessum note Review of the budget\n"
      "  Tessum note \"Call with Ada\" --for 20m\n"
      "  Tessum note \"Lunch with Ada\" --at \"2025-03-01 12:00-13:00\"\n"
      "  Tessum note --edit 3 Review of the whole budget\n"
      "  Tessum note --edit 3 --at 14:00-15:30\n"
      "  Tessum note --delete 3\n"
      "  Tessum note --end");
  command->callback([&host, options] { runNote(host, *options); });
}

}  // namespace tessum
