#include "desktop/settings/duration.h"

#include <algorithm>
#include <cstdint>

#include "core/mcp/duration_argument.h"

namespace tessum {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Whether `text` is a number, or numbers each followed by one of the units h, m and s, in that
// order.
bool isPlainDuration(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isDigit)) return true;
  std::string_view units = "hms";
  bool hasNumber = false;
  for (const char c : text) {
    if (isDigit(c)) {
      hasNumber = true;
      continue;
    }
    const auto unit = units.find(c);
    if (!hasNumber || unit == std::string_view::npos) return false;
    units.remove_prefix(unit + 1);
    hasNumber = false;
  }
  return !text.empty() && !hasNumber;
}

}  // namespace

std::optional<double> plainDuration(std::string_view text) {
  if (!isPlainDuration(text)) return std::nullopt;
  const auto seconds = parseDuration(text);
  if (!seconds) return std::nullopt;
  return static_cast<double>(*seconds);
}

std::string plainDurationText(double seconds) {
  const auto whole = static_cast<std::int64_t>(seconds);
  std::string text;
  if (whole >= 3600) text += std::to_string(whole / 3600) + "h";
  if (whole / 60 % 60 != 0) text += std::to_string(whole / 60 % 60) + "m";
  if (whole % 60 != 0 || text.empty()) text += std::to_string(whole % 60) + "s";
  return text;
}

}  // namespace tessum
