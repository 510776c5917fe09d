#include "desktop/settings/rules.h"

namespace tessum {
namespace {

bool isIn(const Pattern& pattern, const std::optional<std::string_view>& text) {
  return text && pattern.isIn(*text);
}

bool applies(const HideRule& rule, const Window& window, const WallTime& time) {
  return (!rule.schedule || includes(*rule.schedule, time)) && matches(rule.windows, window);
}

}  // namespace

bool matches(const WindowPattern& pattern, const Window& window) {
  if (pattern.app && !isIn(*pattern.app, window.app) && !isIn(*pattern.app, window.identifier)) {
    return false;
  }
  return !pattern.title || isIn(*pattern.title, window.title);
}

std::string patternText(const WindowPattern& windows) {
  std::string text;
  if (windows.app) text += " app '" + windows.app->text() + "'";
  if (windows.title) text += " title '" + windows.title->text() + "'";
  return text;
}

Verdict judge(const std::vector<HideRule>& rules, const Window& window, const WallTime& time) {
  Verdict verdict;
  for (const HideRule& rule : rules) {
    if (rule.kept <= verdict.kept || !applies(rule, window, time)) continue;
    verdict = {rule.kept, &rule};
    if (rule.kept == Kept::nothing) break;
  }
  return verdict;
}

const Category* categoryOf(const Rules& rules, const Window& window) {
  for (const Category& category : rules.categories) {
    if (matches(category.windows, window)) return &category;
  }
  return nullptr;
}

std::optional<Date> nextEdge(const std::vector<HideRule>& rules, Date now) {
  std::optional<Date> next;
  for (const HideRule& rule : rules) {
    if (!rule.schedule) continue;
    const Date edge = nextEdge(*rule.schedule, now);
    if (!next || secondsBetween(edge, *next) > 0) next = edge;
  }
  return next;
}

}  // namespace tessum
