#include "desktop/settings/setting_texts.h"

namespace tessum {
namespace {

std::string timeText(int minute) {
  const std::string hours = std::to_string(minute / 60);
  const std::string minutes = std::to_string(minute % 60);
  return (hours.size() < 2 ? "0" : "") + hours + (minutes.size() < 2 ? ":0" : ":") + minutes;
}

std::string scheduleText(const Schedule& schedule) {
  std::string text;
  if (schedule.hours != Hours()) {
    text += " between " + timeText(schedule.hours.begin) + " and " + timeText(schedule.hours.end);
  }
  if (schedule.days == kEveryDay) return text;
  constexpr const char* kNames[] = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
  text += " on";
  for (std::size_t day = 0; day < schedule.days.size(); ++day) {
    if (schedule.days[day]) text += std::string(" ") + kNames[day];
  }
  return text;
}

}  // namespace

std::string ruleText(const HideRule& rule) {
  const std::string text =
      patternText(rule.windows) + (rule.schedule ? scheduleText(*rule.schedule) : "");
  return text.substr(text.empty() ? 0 : 1) + (rule.kept == Kept::app ? ", keeps the app" : "");
}

std::vector<SettingLine> settingLines(const Settings& settings) {
  std::vector<SettingLine> lines{
      {.name = "away-after",
       .value = awayAfterText(settings.awayAfter.value),
       .line = settings.awayAfter.line,
       .seconds = settings.awayAfter.value.seconds},
      {.name = "titles", .value = titlesText(settings.titles.value), .line = settings.titles.line},
      {.name = "day-starts",
       .value = timeText(settings.dayStarts.value),
       .line = settings.dayStarts.line}};
  for (const HideRule& rule : settings.rules.hide) {
    lines.push_back({.name = "hide", .value = ruleText(rule), .line = rule.line});
  }
  for (const Category& category : settings.rules.categories) {
    lines.push_back({.name = "category",
                     .value = category.name + ":" + patternText(category.windows),
                     .line = category.line});
  }
  return lines;
}

}  // namespace tessum
