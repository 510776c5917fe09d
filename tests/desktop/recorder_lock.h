// The lock of a recorder that runs, without one.

#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "tests/desktop/user.h"

namespace tessum {

// Holds the lock that a recorder holds. The data folder must be there.
class RecorderLock {
 public:
  explicit RecorderLock(const User& user)
      : file_(open((user.dataFolder() + "/recorder.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC,
                   0600)) {
    EXPECT_EQ(flock(file_, LOCK_EX | LOCK_NB), 0);
  }
  ~RecorderLock() { close(file_); }
  RecorderLock(const RecorderLock&) = delete;
  RecorderLock& operator=(const RecorderLock&) = delete;

 private:
  int file_;
};

}  // namespace tessum
