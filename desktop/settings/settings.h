// What the user can set, in one file that Tessum reads.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "desktop/settings/rules.h"

namespace tessum {

// How long nothing is touched before the user is away.
struct AwayAfter {
  std::optional<double> seconds = 300;  // absent means never

  friend bool operator==(const AwayAfter&, const AwayAfter&) = default;
};

// What becomes of titles.
enum class Titles {
  each,  // one session for each title
  last,  // one session for each activation, with its last title
  none   // no titles
};

// A value, and where it comes from.
template <typename T>
struct Setting {
  T value;
  int line = 0;  // of the file; 0 where the file does not set it
};

struct Settings {
  Setting<AwayAfter> awayAfter = {};
  Setting<Titles> titles = {Titles::each};
  Rules rules = {};
};

// Of a duration of up to a day, or "never". Absent for any other text.
[[nodiscard]] std::optional<AwayAfter> parseAwayAfter(std::string_view text);
[[nodiscard]] std::string awayAfterText(const AwayAfter& awayAfter);

// Of the enumerators' names. Absent for any other text.
[[nodiscard]] std::optional<Titles> parseTitles(std::string_view text);
[[nodiscard]] std::string titlesText(Titles titles);

}  // namespace tessum
