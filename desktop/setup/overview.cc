#include "desktop/setup/overview.h"

#include "desktop/clients/registered_clients.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/setup/assistant_steps.h"
#include "desktop/setup/login_start.h"
#include "desktop/text/text_layout.h"

namespace tessum {

Overview overview(const Host& host) {
  const Date now = host.clock.now();
  return {.now = now,
          .recorder = recorderState(host.locations),
          .pause = pauseAt(now, host.locations, host.files),
          .loginStart = loginStart(host),
          .informed = registeredClients(host),
          .uninformed = uninformedAssistants(host)};
}

std::string recordingText(const Overview& overview) {
  const RecorderState& recorder = overview.recorder;
  if (!recorder.isRecording) return "no; \"Tessum setup\" turns it on";
  // While it is paused or the desktop shows nothing, there is a gap.
  const bool hasGap = overview.pause || !recorder.notice.empty();
  return "yes, " + sinceText(recorder.since.value_or(overview.now), overview.now) +
         (hasGap ? "" : " without a gap") + (recorder.way.empty() ? "" : ", by " + recorder.way);
}

std::string loginText(const Overview& overview) {
  return overview.loginStart ? "yes, " + *overview.loginStart
                             : "no; \"Tessum setup\" has it start by itself";
}

std::string assistantsText(const Overview& overview) {
  if (overview.informed.empty() && overview.uninformed.empty()) {
    return "none was found; \"Tessum install --file\" registers Tessum in any file";
  }
  const auto clause = [](const std::vector<std::string>& names, const char* one, const char* many) {
    return joined(names) + (names.size() == 1 ? one : many);
  };
  if (overview.informed.empty()) {
    return clause(overview.uninformed, " does not know of Tessum", " do not know of Tessum");
  }
  std::string text = clause(overview.informed, " knows of Tessum", " know of Tessum");
  if (overview.uninformed.empty()) return text;
  return text + "; " + clause(overview.uninformed, " does not", " do not");
}

std::string nextText(const Overview& overview) {
  if (!overview.recorder.isRecording || !overview.loginStart || !overview.uninformed.empty()) {
    return "\"Tessum setup\", which shows what is missing and asks before it does anything";
  }
  if (overview.pause) return "\"Tessum resume\", which ends the pause";
  return "\"Tessum day\", which shows today" +
         std::string(overview.informed.empty()
                         ? ""
                         : "; or ask " + overview.informed.front() + " \"What did I do today?\"");
}

std::string sinceText(Date start, Date now) {
  const bool isToday = dateText(start) == dateText(now);
  return "since " + (isToday ? "" : dateText(start) + " ") + clockText(start) + " (" +
         durationText(secondsBetween(start, now), DurationForm::longForm) + ")";
}

std::string joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

}  // namespace tessum
