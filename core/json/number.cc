#include "core/json/number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "core/base/check.h"

namespace tessum::json {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The parts of a number: -12.50e+3 is negative, "12", "50", "+3".
struct Parts {
  bool isNegative = false;
  std::string_view whole;
  std::string_view fraction;
  std::string_view exponent;
};

std::string_view takeDigits(std::string_view& rest) {
  const auto end = std::find_if_not(rest.begin(), rest.end(), isDigit);
  const auto digits = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
  rest.remove_prefix(digits.size());
  return digits;
}

bool take(std::string_view& rest, char wanted) {
  if (!rest.starts_with(wanted)) return false;
  rest.remove_prefix(1);
  return true;
}

std::optional<Parts> split(std::string_view text) {
  Parts parts;
  parts.isNegative = take(text, '-');
  parts.whole = takeDigits(text);
  if (parts.whole.empty() || (parts.whole.size() > 1 && parts.whole[0] == '0')) return std::nullopt;
  if (take(text, '.')) {
    parts.fraction = takeDigits(text);
    if (parts.fraction.empty()) return std::nullopt;
  }
  if (take(text, 'e') || take(text, 'E')) {
    const auto begin = text;
    if (!take(text, '+')) take(text, '-');
    if (takeDigits(text).empty()) return std::nullopt;
    parts.exponent = begin.substr(0, begin.size() - text.size());
  }
  if (!text.empty()) return std::nullopt;
  return parts;
}

// Stands for all larger exponents: no digits before them bring the number back into range.
constexpr std::int64_t kHugeExponent = std::numeric_limits<std::int64_t>::max() / 2;

std::int64_t exponentValue(std::string_view exponent) {
  const bool isNegative = exponent.starts_with('-');
  if (isNegative || exponent.starts_with('+')) exponent.remove_prefix(1);
  std::int64_t value = 0;
  const auto read = std::from_chars(exponent.data(), exponent.data() + exponent.size(), value);
  if (read.ec == std::errc::result_out_of_range) value = kHugeExponent;
  value = std::min(value, kHugeExponent);
  return isNegative ? -value : value;
}

}  // namespace

bool isNumber(std::string_view text) {
  return split(text).has_value();
}

std::optional<std::int64_t> integralValue(std::string_view text) {
  const auto parts = split(text);
  if (!parts) return std::nullopt;

  std::string digits(parts->whole);
  digits += parts->fraction;
  std::int64_t scale =
      exponentValue(parts->exponent) - static_cast<std::int64_t>(parts->fraction.size());
  const auto last = digits.find_last_not_of('0');
  if (last == std::string::npos) return 0;
  scale += static_cast<std::int64_t>(digits.size() - last - 1);
  digits.resize(last + 1);
  digits.erase(0, digits.find_first_not_of('0'));

  constexpr std::size_t kMostDigits = 19;  // of a signed 64-bit integer
  if (scale < 0 || digits.size() > kMostDigits ||
      scale > static_cast<std::int64_t>(kMostDigits - digits.size())) {
    return std::nullopt;
  }
  digits.append(static_cast<std::size_t>(scale), '0');
  if (parts->isNegative) digits.insert(digits.begin(), '-');

  std::int64_t value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (read.ec != std::errc()) return std::nullopt;
  return value;
}

std::string numberText(double value) {
  TESSUM_CHECK(std::isfinite(value), "JSON has no number for infinity");
  constexpr int kSurelyEnough = std::numeric_limits<double>::max_digits10;
  char text[32];
  for (int digits = std::numeric_limits<double>::digits10; digits <= kSurelyEnough; ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    if (std::strtod(text, nullptr) == value) break;
  }
  return text;
}

}  // namespace tessum::json
