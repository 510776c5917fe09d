#include "desktop/settings/settings.h"

#include "core/base/text.h"
#include "desktop/settings/duration.h"

namespace tessum {
namespace {

constexpr double kLongestAwayAfter = 24 * 3600;

}  // namespace

std::optional<AwayAfter> parseAwayAfter(std::string_view text) {
  if (text == "never") return AwayAfter{std::nullopt};
  const auto seconds = plainDuration(text);
  if (!seconds || *seconds > kLongestAwayAfter) return std::nullopt;
  return AwayAfter{seconds};
}

std::string awayAfterText(const AwayAfter& awayAfter) {
  return awayAfter.seconds ? plainDurationText(*awayAfter.seconds) : "never";
}

std::optional<Titles> parseTitles(std::string_view text) {
  for (const Titles titles : {Titles::each, Titles::last, Titles::none}) {
    if (text == titlesText(titles)) return titles;
  }
  return std::nullopt;
}

std::string titlesText(Titles titles) {
  switch (titles) {
    case Titles::each:
      return "each";
    case Titles::last:
      return "last";
    case Titles::none:
      break;
  }
  return "none";
}

std::optional<int> parseDayStarts(std::string_view text) {
  const auto minute = parseTimeOfDay(text);
  if (!minute || *minute == 24 * 60) return std::nullopt;
  return minute;
}

std::optional<std::string> parseColour(std::string_view text) {
  constexpr std::size_t kLength = 7;
  std::string colour = lowerCaseAscii(text);
  if (colour.size() != kLength || colour[0] != '#') return std::nullopt;
  if (colour.find_first_not_of("0123456789abcdef", 1) != std::string::npos) return std::nullopt;
  return colour;
}

}  // namespace tessum
