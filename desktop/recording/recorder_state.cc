#include "desktop/recording/recorder_state.h"

#include <utility>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/writer.h"
#include "core/platform/file_lock.h"

namespace tessum {
namespace {

void readText(const std::string& text, RecorderState& state) {
  const json::Value document = json::parse(text);
  const json::Field field(document);
  state.since = Date{field.required("since").real()};
  state.way = field.required("way").text();
  state.notice = field.required("notice").text();
  state.hasEnded = field.required("hasEnded").boolean();
  if (const auto away = field.optional("awaySince")) state.awaySince = Date{away->real()};
  for (const auto& reason : field.required("awake").elements()) {
    state.awake.push_back(reason.text());
  }
}

}  // namespace

std::string recorderFile(const Locations& locations) {
  return locations.dataFolder() + "/recorder.lock";
}

std::string stateText(const RecorderState& state) {
  json::Value::Object object{
      {"way", state.way}, {"notice", state.notice}, {"hasEnded", state.hasEnded}};
  if (state.since) object["since"] = json::Value::real(state.since->secondsSince1970);
  if (state.awaySince) object["awaySince"] = json::Value::real(state.awaySince->secondsSince1970);
  object["awake"] = json::Value::Array(state.awake.begin(), state.awake.end());
  return json::compact(std::move(object)) + "\n";
}

RecorderState recorderState(const Locations& locations) {
  RecorderState state;
  const auto file = readLockFile(recorderFile(locations));
  if (!file) return state;
  state.isRecording = file->isHeld;
  state.lastSign = file->lastModified;
  try {
    readText(file->content, state);
  } catch (const json::DecodingError&) {
    // The recorder has just started, or was killed before it wrote its state.
  }
  return state;
}

std::optional<Activity> currentSession(const RecorderState& state,
                                       const std::vector<Activity>& openSessions) {
  if (!state.isRecording || !state.since || openSessions.empty()) return std::nullopt;
  const Activity& last = openSessions.back();
  if (secondsBetween(*state.since, last.startTime) < -kStartSlack) return std::nullopt;
  return last;
}

}  // namespace tessum
