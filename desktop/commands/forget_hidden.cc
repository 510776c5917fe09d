#include "desktop/commands/forget_hidden.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "core/store/history.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/settings/hidden_sessions.h"
#include "desktop/settings/settings_file.h"
#include "desktop/timeline/page.h"

namespace tessum {
namespace {

std::vector<Replacement> replacementsIn(History& history, const std::vector<HideRule>& rules) {
  std::vector<Replacement> replacements;
  history.visitSessions(kAllTimes, [&](const Activity& session) {
    auto left = leftOf(session, rules);
    const bool isWhole = left.size() == 1 && left.front() == session;
    if (!isWhole) replacements.push_back({session, std::move(left)});
  });
  return replacements;
}

bool isCut(const Replacement& replacement) {
  const auto& [session, by] = replacement;
  return !by.empty() && (by.size() > 1 || by.front().startTime != session.startTime ||
                         by.front().endTime != session.endTime);
}

bool losesTitle(const Replacement& replacement) {
  const auto& title = replacement.session.title;
  return std::any_of(replacement.by.begin(), replacement.by.end(),
                     [&](const Activity& piece) { return piece.title != title; });
}

// Adds one of the changes, unless it affects no sessions.
void addPart(std::string& text, const std::string& verb, std::int64_t count) {
  if (count == 0) return;
  text += (text.empty() ? "" : ", ") + verb + " " + counted(count, "session");
}

// The rest of a sentence that says what will change.
std::string description(const std::vector<Replacement>& replacements) {
  const auto count = [&](const auto& isMeant) {
    return std::count_if(replacements.begin(), replacements.end(), isMeant);
  };
  std::string text;
  addPart(text, "deletes", count([](const Replacement& each) { return each.by.empty(); }));
  addPart(text, "deletes the title of", count(losesTitle));
  addPart(text, "cuts a schedule's time out of", count(isCut));
  return text;
}

}  // namespace

void forgetHidden(Host& host, bool isSure) {
  const Settings settings = loadSettings(host.locations, host.files);
  History history(historyPath(host.locations), History::Access::write);
  const auto replacements = replacementsIn(history, settings.rules.hide);
  if (replacements.empty()) {
    print("The history holds nothing that the settings hide.\n");
    return;
  }
  print("This " + description(replacements) + ".\n");
  if (!isSure && !askYesOrNo("It cannot be undone. Delete?")) {
    print("Nothing was deleted.\n");
    host.status = kFailure;
    return;
  }
  history.replace(replacements);
  removeTimeline(host.locations);
  print("Deleted.\n");
  history.writeAnew();
}

}  // namespace tessum
