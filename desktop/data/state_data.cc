#include "desktop/data/state_data.h"

#include "core/http/endpoint_url.h"
#include "core/json/writer.h"
#include "desktop/data/values.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/settings/setting_texts.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

using json::Value;

Value textOrNull(const std::string& text) {
  return text.empty() ? Value() : Value(text);
}

Value timeOrNull(const std::optional<Date>& date) {
  return date ? Value(offsetDateTime(*date)) : Value();
}

Value texts(const std::vector<std::string>& list) {
  Value::Array values;
  for (const std::string& text : list) values.emplace_back(text);
  return values;
}

std::string endpointName(EndpointState endpoint) {
  switch (endpoint) {
    case EndpointState::answers:
      return "answers";
    case EndpointState::taken:
      return "taken";
    case EndpointState::silent:
      break;
  }
  return "silent";
}

Value sessionValue(const std::optional<Activity>& session, Date now) {
  if (!session) return {};
  return Value::Object{{"application", session->appName},
                       {"bundle_id", orNull(session->bundleID)},
                       {"text", orNull(session->title)},
                       {"start", offsetDateTime(session->startTime)},
                       {"seconds", secondsValue(secondsUntil(now, *session))}};
}

Value noteValue(const std::optional<Annotation>& note, Date now) {
  if (!note) return {};
  return Value::Object{
      {"id", note->id.value_or(0)},
      {"text", note->text},
      {"start", offsetDateTime(note->startedAt)},
      {"seconds", secondsValue(secondsUntil(now, note->startedAt, note->endedAt))}};
}

Value pauseValue(const std::optional<Pause>& pause) {
  if (!pause) return {};
  return Value::Object{{"until", timeOrNull(pause->until)}};
}

// A line of the settings; null where the file does not say it.
Value lineOrNull(int line) {
  return line == 0 ? Value() : Value(line);
}

std::string reportLine(const Value::Object& report) {
  return json::compact(report) + "\n";
}

}  // namespace

std::string statusData(const Overview& overview, const HistoryState& history,
                       EndpointState endpoint) {
  const RecorderState& recorder = overview.recorder;
  const auto ofRecorder = [&](const Value& value) {
    return recorder.isRecording ? value : Value();
  };
  return reportLine(
      {{"report", "status"},
       {"time", offsetDateTime(overview.now)},
       {"recording", recorder.isRecording},
       {"since", ofRecorder(timeOrNull(recorder.since))},
       {"by", ofRecorder(textOrNull(recorder.way))},
       {"awaySince", ofRecorder(timeOrNull(recorder.awaySince))},
       {"keptAwakeBy", ofRecorder(texts(recorder.awake))},
       {"notice", ofRecorder(textOrNull(recorder.notice))},
       {"paused", pauseValue(overview.pause)},
       {"atLogin", orNull(overview.loginStart)},
       {"clients", texts(overview.informed)},
       {"otherClients", texts(overview.uninformed)},
       {"next", nextText(overview)},
       {"session", sessionValue(history.session, overview.now)},
       {"note", noteValue(history.note, overview.now)},
       {"history",
        Value::Object{
            {"path", history.path},
            {"bytes", history.size ? Value(static_cast<std::int64_t>(*history.size)) : Value()}}},
       {"endpoint",
        Value::Object{{"url", usualEndpointURL()}, {"state", endpointName(endpoint)}}}});
}

std::string doctorData(const std::vector<Finding>& findings) {
  Value::Array rows;
  int problems = 0;
  for (const Finding& finding : findings) {
    if (finding.isProblem()) ++problems;
    rows.push_back(Value::Object{{"result", finding.isProblem()    ? "problem"
                                            : finding.isAdviceOnly ? "advice"
                                                                   : "ok"},
                                 {"text", finding.text},
                                 {"remedy", textOrNull(finding.remedy)}});
  }
  return reportLine({{"report", "doctor"}, {"problems", problems}, {"rows", std::move(rows)}});
}

std::string clientsData(const std::vector<ClientRow>& rows) {
  Value::Array values;
  for (const ClientRow& row : rows) {
    const bool isRegistered = row.isRegistered.value_or(false);
    values.push_back(
        Value::Object{{"application", row.application},
                      {"here", row.isPresent},
                      {"registered", orNull(row.isRegistered)},
                      {"entry", textOrNull(row.form)},
                      {"works", isRegistered ? Value(row.problem.empty()) : Value()},
                      {"problem", textOrNull(row.problem.empty() ? row.remark : row.problem)},
                      {"file", row.file}});
  }
  return reportLine({{"report", "clients"}, {"rows", std::move(values)}});
}

std::string settingsData(const Settings& settings, const std::string& path, bool exists) {
  Value::Array rows;
  for (const SettingLine& setting : settingLines(settings)) {
    rows.push_back(
        Value::Object{{"name", setting.name},
                      {"value", setting.value},
                      {"seconds", setting.seconds ? secondsValue(*setting.seconds) : Value()},
                      {"line", lineOrNull(setting.line)}});
  }
  return reportLine(
      {{"report", "settings"}, {"file", path}, {"exists", exists}, {"rows", std::move(rows)}});
}

}  // namespace tessum
