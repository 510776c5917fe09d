// The lock of a running recorder, without the recorder.

#pragma once

#include <gtest/gtest.h>

#include "core/platform/file_lock.h"
#include "desktop/recording/recorder_state.h"
#include "tests/desktop/user.h"

namespace tessum {

// Holds the recorder's lock and publishes its state. The data folder must exist.
class RecorderLock {
 public:
  explicit RecorderLock(const User& user, RecorderState state = {.since = SystemClock().now()})
      : lock_(FileLock::take(user.dataFolder() + "/recorder.lock")) {
    EXPECT_TRUE(lock_.has_value());
    state.way = "test";
    lock_->write(stateText(state));
  }

 private:
  std::optional<FileLock> lock_;
};

}  // namespace tessum
