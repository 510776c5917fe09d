// A monitor whose surroundings a test moves on.

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/monitor/activity_monitor.h"
#include "tests/support/fakes/fake_clock.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_workspace.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

using Rows = std::vector<std::string>;
using Calls = std::vector<std::string>;

inline const RunningApplication kEditor{"Editor", "org.editor", 10};
inline const RunningApplication kBrowser{"Browser", "org.browser", 20};

// A monitor over a real database, at second 1000 of time.
class ActivityMonitorTest : public testing::Test {
 protected:
  // The sessions: name, bundle identifier, title, start and end.
  Rows sessions() {
    return sql_.rows(
        "SELECT app_name, bundle_id, title, CAST(start_time AS INTEGER), CAST(end_time AS INTEGER) "
        "FROM activities ORDER BY id");
  }

  const TemporaryFolder folder_;
  const SystemCalendar calendar_{};
  FakeClock clock_{Date{1000}};
  FakeMainLoop loop_{clock_};
  FakeWorkspace workspace_;
  const std::shared_ptr<Database> database_ =
      std::make_shared<Database>(folder_.file("activities.db"), calendar_);
  Sql sql_{folder_.file("activities.db")};
  std::optional<ActivityMonitor> monitor_{std::in_place, database_, clock_, workspace_, loop_};
};

}  // namespace tessum
