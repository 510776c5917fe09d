// The user's settings, which Tessum reads from one file.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "desktop/settings/rules.h"

namespace tessum {

// How long there is no input before the user counts as away.
struct AwayAfter {
  std::optional<double> seconds = 300;  // absent means never

  friend bool operator==(const AwayAfter&, const AwayAfter&) = default;
};

// How titles are recorded.
enum class Titles {
  each,  // one session for each title
  last,  // one session for each activation, with its last title
  none   // no titles
};

// A value and its origin.
template <typename T>
struct Setting {
  T value;
  int line = 0;  // of the file; 0 when the file does not set it
};

struct Settings {
  Setting<AwayAfter> awayAfter = {};
  Setting<Titles> titles = {Titles::each};
  Setting<int> dayStarts = {0};  // minutes after midnight at which the days of reports begin
  Rules rules = {};
};

// Parses a duration of up to a day, or "never". Absent for any other text.
[[nodiscard]] std::optional<AwayAfter> parseAwayAfter(std::string_view text);
[[nodiscard]] std::string awayAfterText(const AwayAfter& awayAfter);

// Parses an enumerator's name. Absent for any other text.
[[nodiscard]] std::optional<Titles> parseTitles(std::string_view text);
[[nodiscard]] std::string titlesText(Titles titles);

// Minutes after midnight, less than a day, of a text such as 04:00. Absent for any other text.
[[nodiscard]] std::optional<int> parseDayStarts(std::string_view text);

// A colour such as #3a7bd5, in small letters. Absent for any other text.
[[nodiscard]] std::optional<std::string> parseColour(std::string_view text);

}  // namespace tessum
