// Writes the history that the tests in this folder read into the user's data folder.

#include "core/base/date.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/platform/locations.h"
#include "core/platform/private_files.h"
#include "core/store/database.h"

int main() {
  using namespace tessum;

  const std::string folder = SystemLocations().dataFolder();
  createPrivateFolders(folder);
  const SystemCalendar calendar;
  Database database(folder + "/activities.db", calendar);

  const Date morning = *parseInternetDateTime("2025-03-04T11:00:00Z");
  database.insert({.id = {},
                   .appName = "Safari",
                   .bundleID = "com.apple.Safari",
                   .title = "Pull request 42",
                   .startTime = morning,
                   .endTime = movedBy(morning, 32 * 60)});
  database.insert({.id = {},
                   .appName = "Terminal",
                   .bundleID = {},
                   .title = {},
                   .startTime = movedBy(morning, 32 * 60),
                   .endTime = movedBy(morning, 45 * 60)});
  const Date now = SystemClock().now();
  database.insert({.id = {},
                   .appName = "Notes",
                   .bundleID = {},
                   .title = "Caf\u00E9 \u2615 / tea",
                   .startTime = now,
                   .endTime = {}});
  database.insert({.id = {},
                   .appName = "Mail",
                   .bundleID = {},
                   .title = {},
                   .startTime = movedBy(now, -24 * 60 * 60),
                   .endTime = movedBy(now, -23 * 60 * 60)});
}
