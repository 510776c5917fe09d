#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "core/http/endpoint_state.h"
#include "core/http/endpoint_url.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/data/state_data.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/settings/pause.h"
#include "desktop/setup/overview.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

std::string sizeText(std::uintmax_t bytes) {
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  const char* unit = "kB";
  double value = static_cast<double>(bytes) / 1000;
  if (value >= 1000) {
    value /= 1000;
    unit = "MB";
  }
  const auto tenths = static_cast<long>(value * 10 + 0.5);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " " + unit;
}

std::string sessionText(const std::optional<Activity>& session, Date now) {
  if (!session) return "nothing";
  std::string text = session->appName;
  if (session->title && !session->title->empty()) text += " – " + *session->title;
  return text + ", " + sinceText(session->startTime, now);
}

std::string noteText(const std::optional<Annotation>& note, Date now) {
  return note ? note->text + ", " + sinceText(note->startedAt, now) : "none";
}

std::string endpointText() {
  switch (endpointState()) {
    case EndpointState::answers:
      return usualEndpointURL() + ", which answers";
    case EndpointState::taken:
      return usualEndpointURL() + ", where another program answers";
    case EndpointState::silent:
      break;
  }
  return usualEndpointURL() + ", which \"Tessum record --http\" opens";
}

HistoryState historyState(const Host& host, const RecorderState& recorder) {
  HistoryState state{.path = historyPath(host.locations)};
  try {
    History history(state.path, History::Access::read);
    state.session = currentSession(recorder, history.openSessions());
    const auto notes = history.openNotes();
    if (!notes.empty()) state.note = notes.front();
    state.size = std::filesystem::file_size(state.path);
  } catch (const NoHistory&) {  // which is a state, too
  }
  return state;
}

void showStatus(const Host& host, bool isData) {
  const Overview state = overview(host);
  const RecorderState& recorder = state.recorder;
  const Date now = state.now;
  const HistoryState history = historyState(host, recorder);
  if (isData) return printForeign(statusData(state, history, endpointState()));
  using enum Table::Alignment;
  Table table({left, left});
  const auto add = [&](const char* name, const std::string& value, Tone tone = Tone::plain,
                       Table::Fit fit = Table::Fit::wrap) {
    table.addRow({{name, Tone::faint}, {value, tone, fit}});
  };
  add("Recording", recordingText(state), recorder.isRecording ? Tone::good : Tone::bad);
  if (state.pause) add("Paused", pauseText(*state.pause, now), Tone::bad);
  if (recorder.isRecording) {
    if (!recorder.notice.empty()) add("Notice", recorder.notice, Tone::bad);
    if (recorder.awaySince) add("Away", sinceText(*recorder.awaySince, now));
    if (!recorder.awake.empty()) add("Kept awake", "by " + joined(recorder.awake));
  }
  add("At login", loginText(state), state.loginStart ? Tone::good : Tone::bad);
  add("Clients", assistantsText(state));
  add("Next", nextText(state), Tone::strong);
  if (history.size) {
    add("In front", sessionText(history.session, now));
    add("Note", noteText(history.note, now));
  }
  add("History",
      history.path + (history.size ? ", " + sizeText(*history.size) : ", which does not exist yet"),
      Tone::plain, Table::Fit::whole);
  add("Endpoint", endpointText());
  print(table.text(standardOutputPaper()));
}

}  // namespace

void addStatusCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("status", "Show whether Tessum is recording, and where");
  const auto isData = std::make_shared<bool>(false);
  addJsonOption(*command, *isData);
  command->footer(
      "Examples:\n"
      "  Tessum status\n"
      "  Tessum status --json");
  command->callback([&host, isData] { showStatus(host, *isData); });
}

}  // namespace tessum
