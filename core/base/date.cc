#include "core/base/date.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tessum {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

// Beyond 2^53 a double cannot count single seconds.
constexpr double kFarthestSecond = 9007199254740992.0;

struct CivilDate {
  std::int64_t year;
  unsigned month;
  unsigned day;
};

// The proleptic Gregorian date of a day counted from 1970-01-01. Years begin in March here, so the
// leap day comes last and a linear formula gives the lengths of the other months.
CivilDate civilFromDays(std::int64_t days) {
  constexpr std::int64_t kDaysPerEra = 146097;  // 400 years
  constexpr std::int64_t kDaysFromYearZero = 719468;
  const std::int64_t shifted = days + kDaysFromYearZero;
  const std::int64_t era = (shifted >= 0 ? shifted : shifted - (kDaysPerEra - 1)) / kDaysPerEra;
  const auto dayOfEra = static_cast<unsigned>(shifted - era * kDaysPerEra);
  const unsigned yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned monthFromMarch = (5 * dayOfYear + 2) / 153;
  const unsigned day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
  const unsigned month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

// The inverse of civilFromDays().
std::int64_t daysFromCivil(const CivilDate& date) {
  const std::int64_t year = date.year - (date.month <= 2 ? 1 : 0);
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t monthFromMarch = date.month > 2 ? date.month - 3 : date.month + 9;
  const std::int64_t dayOfYear = (153 * monthFromMarch + 2) / 5 + date.day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

char* writeTwoDigits(char* out, unsigned value) {
  *out++ = static_cast<char>('0' + value / 10);
  *out++ = static_cast<char>('0' + value % 10);
  return out;
}

char* writeYear(char* out, std::int64_t year) {
  if (year < 0) {
    *out++ = '-';
    year = -year;
  }
  if (year > 9999) return std::to_chars(out, out + 20, year).ptr;
  out = writeTwoDigits(out, static_cast<unsigned>(year / 100));
  return writeTwoDigits(out, static_cast<unsigned>(year % 100));
}

char* writeSeparated(char* out, char separator, unsigned value) {
  *out = separator;
  return writeTwoDigits(out + 1, value);
}

}  // namespace

void appendTimeStamp(std::string& out, Date date) {
  const double whole = std::isnan(date.secondsSince1970) ? 0 : std::floor(date.secondsSince1970);
  const auto seconds =
      static_cast<std::int64_t>(std::clamp(whole, -kFarthestSecond, kFarthestSecond));
  const std::int64_t days =
      (seconds >= 0 ? seconds : seconds - (kSecondsPerDay - 1)) / kSecondsPerDay;
  const auto rest = static_cast<unsigned>(seconds - days * kSecondsPerDay);
  const CivilDate civil = civilFromDays(days);

  char text[48];
  char* end = writeYear(text, civil.year);
  end = writeSeparated(end, '-', civil.month);
  end = writeSeparated(end, '-', civil.day);
  end = writeSeparated(end, 'T', rest / 3600);
  end = writeSeparated(end, ':', rest / 60 % 60);
  end = writeSeparated(end, ':', rest % 60);
  out.append(text, end);
}

std::string internetDateTime(Date date) {
  std::string out;
  appendTimeStamp(out, date);
  out += 'Z';
  return out;
}

std::optional<Date> parseInternetDateTime(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";  // a zero stands for any digit
  if (text.size() != kForm.size()) return std::nullopt;
  const auto fits = [](char c, char form) {
    return form == '0' ? c >= '0' && c <= '9' : c == form;
  };
  if (!std::equal(text.begin(), text.end(), kForm.begin(), fits)) return std::nullopt;

  const auto number = [&](std::size_t at, std::size_t length) {
    unsigned value = 0;
    std::from_chars(text.data() + at, text.data() + at + length, value);
    return value;
  };
  const CivilDate civil{number(0, 4), number(5, 2), number(8, 2)};
  const std::int64_t days = daysFromCivil(civil);
  const CivilDate normal = civilFromDays(days);
  const unsigned hour = number(11, 2);
  const unsigned minute = number(14, 2);
  const unsigned second = number(17, 2);
  const bool dateExists = normal.month == civil.month && normal.day == civil.day;
  if (!dateExists || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return Date{static_cast<double>(days * kSecondsPerDay + hour * 3600 + minute * 60 + second)};
}

}  // namespace tessum
