// demo-data: writes an invented history into a database, for experiments, screenshots and
// measurements.

#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "core/base/date.h"
#include "tools/demo_history.h"

namespace {

constexpr char kUsage[] =
    "Usage: demo-data PATH [--days N] [--sessions-per-day N] [--seed N] [--now TIME]\n"
    "Writes an invented history into the database at PATH: N whole days (14) and today so far,\n"
    "with N sessions a day (90), as if it were TIME, such as 2025-03-05T12:00:00Z.\n";

template <typename Number>
bool readNumber(std::string_view text, int least, int most, Number& number) {
  int value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return false;
  number = static_cast<Number>(value);
  return value >= least && value <= most;
}

struct Arguments {
  std::string path;
  tessum::DemoOptions options;
  tessum::Date now = tessum::SystemClock().now();
};

std::optional<Arguments> readArguments(int count, char** texts) {
  Arguments arguments;
  for (int i = 1; i < count; ++i) {
    const std::string_view text = texts[i];
    if (!text.starts_with("--")) {
      if (!arguments.path.empty() || text.empty()) return std::nullopt;
      arguments.path = text;
      continue;
    }
    if (++i == count) return std::nullopt;
    if (text == "--now") {
      const auto now = tessum::parseInternetDateTime(texts[i]);
      if (!now) return std::nullopt;
      arguments.now = *now;
      continue;
    }
    tessum::DemoOptions& options = arguments.options;
    const bool isRead = text == "--days" ? readNumber(texts[i], 0, 100'000, options.days)
                        : text == "--sessions-per-day"
                            ? readNumber(texts[i], 1, 100'000, options.sessionsPerDay)
                        : text == "--seed" ? readNumber(texts[i], 0, 1'000'000'000, options.seed)
                                           : false;
    if (!isRead) return std::nullopt;
  }
  if (arguments.path.empty()) return std::nullopt;
  return arguments;
}

}  // namespace

int main(int count, char** texts) {
  const auto arguments = readArguments(count, texts);
  if (!arguments) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  try {
    const tessum::SystemCalendar calendar;
    const auto history = tessum::demoHistory(arguments->options, arguments->now, calendar);
    tessum::writeDemoHistory(arguments->path, history, calendar);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "demo-data: %s\n", error.what());
    return 1;
  }
  return 0;
}
