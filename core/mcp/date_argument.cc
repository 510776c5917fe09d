#include "core/mcp/date_argument.h"

#include <charconv>
#include <cstddef>

namespace tessum {
namespace {

// Takes `least` to `most` digits off the front.
std::optional<int> takeNumber(std::string_view& text, std::size_t least, std::size_t most) {
  int value = 0;
  const auto digits = text.substr(0, most);
  if (digits.starts_with('-')) return std::nullopt;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const auto length = static_cast<std::size_t>(read.ptr - digits.data());
  if (length < least) return std::nullopt;
  text.remove_prefix(length);
  return value;
}

bool takeDash(std::string_view& text) {
  if (!text.starts_with('-')) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

std::optional<Date> parseDate(std::string_view text, const Calendar& calendar) {
  const auto year = takeNumber(text, 4, 4);
  if (!year || *year < 1 || !takeDash(text)) return std::nullopt;
  const auto month = takeNumber(text, 1, 2);
  if (!month || !takeDash(text)) return std::nullopt;
  const auto day = takeNumber(text, 1, 2);
  if (!day || !text.empty()) return std::nullopt;
  return calendar.startOf({*year, *month, *day});
}

}  // namespace tessum
