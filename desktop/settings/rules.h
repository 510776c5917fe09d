// Decides what is recorded of a window, and to which category it belongs.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "desktop/settings/pattern.h"
#include "desktop/settings/schedule.h"

namespace tessum {

// The properties that rules match. Texts are UTF-8; unknown ones are absent.
struct Window {
  std::optional<std::string_view> app;         // the application's name
  std::optional<std::string_view> identifier;  // its permanent name
  std::optional<std::string_view> title;
};

// The windows that match every present pattern.
struct WindowPattern {
  std::optional<Pattern> app;  // in the name or the identifier
  std::optional<Pattern> title;
};

[[nodiscard]] bool matches(const WindowPattern& pattern, const Window& window);

// The patterns as a person reads them, such as " app 'Editor' title 'x'", with a blank before each.
[[nodiscard]] std::string patternText(const WindowPattern& pattern);

// What is recorded.
enum class Kept {
  all,
  app,     // the application, without the title
  nothing  // as if nothing were in front
};

// Hides matching windows during its schedule.
struct HideRule {
  WindowPattern windows;
  std::optional<Schedule> schedule;  // absent means always
  Kept kept = Kept::nothing;         // never all
  int line = 0;                      // in the settings
};

struct Category {
  std::string name;
  WindowPattern windows;
  std::optional<std::string> colour;  // as #rrggbb, in small letters
  int line = 0;                       // in the settings
};

struct Rules {
  std::vector<HideRule> hide;
  std::vector<Category> categories;
};

struct Verdict {
  Kept kept = Kept::all;
  const HideRule* rule = nullptr;  // the deciding one of the given rules; null when all is kept
};

// What is kept of `window` at `time`: the least that any rule keeps, with the first rule that does
// so.
[[nodiscard]] Verdict judge(const std::vector<HideRule>& rules, const Window& window,
                            const WallTime& time);

// The first category that `window` belongs to; null when none matches.
[[nodiscard]] const Category* categoryOf(const Rules& rules, const Window& window);

// The first moment after `now` at which the schedule of a rule may begin or end; absent when no
// rule has one.
[[nodiscard]] std::optional<Date> nextEdge(const std::vector<HideRule>& rules, Date now);

}  // namespace tessum
