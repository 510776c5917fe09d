#include "core/mcp/duration_argument.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tessum {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

// a * b + c; absent when it does not fit. Needs a >= 0, b > 0 and c >= 0.
std::optional<std::int64_t> multiplyAdd(std::int64_t a, std::int64_t b, std::int64_t c) {
  if (a > (kMost - c) / b) return std::nullopt;
  return a * b + c;
}

// Characters outside ASCII that count as numeric: the digits of other scripts, superscripts,
// fractions and the like. Both ends are included.
struct Range {
  char32_t first;
  char32_t last;
};
constexpr Range kNumericCharacters[] = {
    {0x00B2, 0x00B3},   {0x00B9, 0x00B9}, {0x00BC, 0x00BE}, {0x0660, 0x0669}, {0x06F0, 0x06F9},
    {0x07C0, 0x07C9},   {0x0966, 0x096F}, {0x09E6, 0x09EF}, {0x0A66, 0x0A6F}, {0x0AE6, 0x0AEF},
    {0x0B66, 0x0B6F},   {0x0BE6, 0x0BEF}, {0x0C66, 0x0C6F}, {0x0CE6, 0x0CEF}, {0x0D66, 0x0D6F},
    {0x0E50, 0x0E59},   {0x0ED0, 0x0ED9}, {0x0F20, 0x0F29}, {0x1040, 0x1049}, {0x17E0, 0x17E9},
    {0x1810, 0x1819},   {0x2070, 0x2070}, {0x2074, 0x2079}, {0x2080, 0x2089}, {0x2150, 0x2189},
    {0x2460, 0x249B},   {0x3007, 0x3007}, {0x3021, 0x3029}, {0xFF10, 0xFF19}, {0x104A0, 0x104A9},
    {0x1D7CE, 0x1D7FF},
};

bool isNumeric(char32_t character) {
  return std::any_of(
      std::begin(kNumericCharacters), std::end(kNumericCharacters),
      [&](const Range& range) { return character >= range.first && character <= range.last; });
}

// Removes the first character, which is not ASCII, from valid UTF-8.
char32_t takeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  char32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  text.remove_prefix(length);
  return character;
}

std::int64_t secondsOf(char unit) {
  switch (unit) {
    case 'h':
    case 'H':
      return 3600;
    case 'm':
    case 'M':
      return 60;
    case 's':
    case 'S':
      return 1;
    default:
      return 0;
  }
}

}  // namespace

std::optional<std::int64_t> parseDuration(std::string_view text) {
  std::int64_t total = 0;
  std::optional<std::int64_t> number;  // of the digits since the last unit
  while (!text.empty()) {
    const char c = text.front();
    if (static_cast<unsigned char>(c) >= 0x80) {
      // Non-ASCII digits stop the scan: digits that hold one never read as a number, so all later
      // units are ignored.
      if (isNumeric(takeCharacter(text))) {
        number.reset();
        break;
      }
      continue;
    }
    text.remove_prefix(1);
    if (c >= '0' && c <= '9') {
      number = multiplyAdd(number.value_or(0), 10, c - '0');
      if (!number) break;  // nor do digits that do not fit 64 bits
    } else if (number && secondsOf(c) != 0) {
      const auto sum = multiplyAdd(*number, secondsOf(c), total);
      if (!sum) return std::nullopt;
      total = *sum;
      number.reset();
    }
  }
  if (number && total == 0) total = multiplyAdd(*number, secondsOf('m'), 0).value_or(0);
  if (total <= 0) return std::nullopt;
  return total;
}

}  // namespace tessum
