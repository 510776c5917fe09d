#include "desktop/import/import_time.h"

#include <string>

namespace tessum {
namespace {

// From one character on, as many digits as there are.
std::string_view digitsAt(std::string_view text, std::size_t begin) {
  const std::string_view rest = text.substr(begin);
  return rest.substr(0, std::min(rest.find_first_not_of("0123456789"), rest.size()));
}

// The part of a second that ".25" or nothing stands for; it is taken off the front of `text`.
std::optional<double> takeFraction(std::string_view& text) {
  if (!text.starts_with('.')) return 0;
  const std::string_view digits = digitsAt(text, 1);
  if (digits.empty()) return std::nullopt;
  text.remove_prefix(1 + digits.size());
  double fraction = 0;
  double place = 1;
  for (const char digit : digits) fraction += (digit - '0') * (place /= 10);
  return fraction;
}

// Seconds ahead of UTC of Z or +01:00.
std::optional<double> parseOffset(std::string_view text) {
  if (text == "Z" || text == "z") return 0;
  constexpr std::size_t kSize = 6;
  if (text.size() != kSize || (text[0] != '+' && text[0] != '-') || text[3] != ':' ||
      digitsAt(text, 1).size() != 2 || digitsAt(text, 4).size() != 2) {
    return std::nullopt;
  }
  const auto number = [&](std::size_t i) { return (text[i] - '0') * 10 + (text[i + 1] - '0'); };
  const double seconds = number(1) * 3600.0 + number(4) * 60.0;
  return text[0] == '-' ? -seconds : seconds;
}

}  // namespace

std::optional<Date> parseOffsetDateTime(std::string_view text) {
  constexpr std::size_t kSizeToSeconds = 19;
  if (text.size() <= kSizeToSeconds) return std::nullopt;
  const auto whole = parseInternetDateTime(std::string(text.substr(0, kSizeToSeconds)) + "Z");
  text.remove_prefix(kSizeToSeconds);
  const auto fraction = takeFraction(text);
  const auto offset = parseOffset(text);
  if (!whole || !fraction || !offset) return std::nullopt;
  return movedBy(*whole, *fraction - *offset);
}

bool isInHistory(Date date) {
  constexpr double kStartOfYear10000 = 253402300800.0;
  return date.secondsSince1970 >= kStartOfYearOne.secondsSince1970 &&
         date.secondsSince1970 < kStartOfYear10000;
}

}  // namespace tessum
