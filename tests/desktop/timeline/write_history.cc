// Writes a history from lines on standard input, their fields divided by tabs:
//
//   session  APPLICATION  TITLE  START  END
//   note     TEXT         START  END
//
// Times are written as 2025-03-04T09:15:00Z; an empty END is open, an empty TITLE absent.

#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "core/base/date.h"
#include "core/platform/calendar.h"
#include "core/platform/locations.h"
#include "core/platform/private_files.h"
#include "tools/demo_history.h"

namespace tessum {
namespace {

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream in(line);
  for (std::string field; std::getline(in, field, '\t');) fields.push_back(field);
  fields.resize(5);
  return fields;
}

std::optional<std::string> present(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

DemoDay readHistory(std::istream& in) {
  DemoDay history;
  for (std::string line; std::getline(in, line);) {
    const auto fields = fieldsOf(line);
    if (fields[0] == "session") {
      history.activities.push_back({.id = {},
                                    .appName = fields[1],
                                    .bundleID = {},
                                    .title = present(fields[2]),
                                    .startTime = *parseInternetDateTime(fields[3]),
                                    .endTime = parseInternetDateTime(fields[4])});
    } else {
      history.annotations.push_back({.id = {},
                                     .text = fields[1],
                                     .startedAt = *parseInternetDateTime(fields[2]),
                                     .endedAt = parseInternetDateTime(fields[3])});
    }
  }
  return history;
}

}  // namespace
}  // namespace tessum

int main() {
  using namespace tessum;
  const std::string folder = SystemLocations().dataFolder();
  createPrivateFolders(folder);
  writeDemoHistory(folder + "/activities.db", {readHistory(std::cin)}, SystemCalendar());
}
