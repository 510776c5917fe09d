// A small in-memory database with every kind of row, created for each input so that inputs do not
// affect each other.

#pragma once

#include <memory>

#include "core/platform/calendar.h"
#include "core/store/database.h"

namespace tessum {

// The end of its history: 2025-03-04T12:00:00Z.
inline constexpr Date kNow{1741089600};

[[nodiscard]] inline std::shared_ptr<Database> makeSmallStore(const Calendar& calendar) {
  auto database = std::make_shared<Database>(":memory:", calendar);
  database->insert({.id = {},
                    .appName = "Safari",
                    .bundleID = "com.apple.Safari",
                    .title = "Pull request 42",
                    .startTime = movedBy(kNow, -3600),
                    .endTime = movedBy(kNow, -1800)});
  database->insert({.id = {},
                    .appName = "bad \xFF bytes",
                    .bundleID = {},
                    .title = "\xED\xA0\x80 \"quoted\" / \\",
                    .startTime = movedBy(kNow, -1800),
                    .endTime = {}});
  database->insertAnnotation(
      {.id = {}, .text = "Fixing bug", .startedAt = movedBy(kNow, -600), .endedAt = {}});
  return database;
}

}  // namespace tessum
