// Many changes of focus, at a rate that the recorder can follow, and faster.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>
#include <utility>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/environment.h"

namespace tessum {
namespace {

constexpr int kFocusChanges = TESSUM_FOCUS_CHANGES;
constexpr int kRequestsAtOnce = 2000;

// In memory if the system has such a folder: this tests the sessions, not the disk.
const char* fastFolder() {
  return std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : nullptr;
}

// Like eventually(), for conditions that take less than a millisecond and are awaited thousands of
// times.
template <typename Predicate>
[[nodiscard]] bool soon(Predicate isDone) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!isDone()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

class ManyChanges : public testing::Test {
 protected:
  void SetUp() override {
    desktop_.startWindowManager();
    for (const char* name : {"A", "B", "C", "D"}) windows_.push_back(desktop_.addWindow(name));
    recorder_.emplace(desktop_);
    ASSERT_TRUE(recorder_->comesTo({"D|NULL|NULL|open"}));
  }

  // A, B, C, and again.
  [[nodiscard]] xcb_window_t windowOfChange(int change) const {
    return windows_.at(static_cast<std::size_t>(change % 3));
  }

  std::optional<ScopedVariable> folder_ =
      fastFolder() == nullptr
          ? std::nullopt
          : std::optional<ScopedVariable>(std::in_place, "TMPDIR", fastFolder());
  Desktop desktop_;
  std::vector<xcb_window_t> windows_;
  std::optional<Recorder> recorder_;
};

TEST_F(ManyChanges, EachIsOneSessionInOrder) {
  const std::uint32_t before = changeCounter(recorder_->store());
  Recorder::Rows expected{"D|NULL|NULL|closed"};
  for (int i = 0; i < kFocusChanges; ++i) {
    desktop_.activate(windowOfChange(i));
    // The end of one session and the beginning of the next are one write.
    const std::uint32_t writes = before + static_cast<std::uint32_t>(i + 1);
    ASSERT_TRUE(soon([&] { return changeCounter(recorder_->store()) >= writes; })) << i;
    expected.push_back(std::string(1, "ABC"[i % 3]) + "|NULL|NULL|closed");
  }
  expected.back() = expected.back().substr(0, 12) + "open";
  EXPECT_TRUE(recorder_->comesTo(expected)) << recorder_->sessions().size();
}

TEST_F(ManyChanges, OfManyAtOnceTheLastIsRecordedAndNoneIsInvented) {
  for (int i = 0; i < kRequestsAtOnce; ++i) desktop_.request(windowOfChange(i));
  desktop_.activate(windows_[3]);

  Recorder::Rows sessions;
  std::uint32_t writes = 0;
  ASSERT_TRUE(eventually([&] {
    if (std::exchange(writes, changeCounter(recorder_->store())) != writes) return false;
    sessions = recorder_->sessions();
    return sessions.size() > 1 && sessions.back() == "D|NULL|NULL|open";
  })) << sessions.size();
  EXPECT_LE(sessions.size(), kRequestsAtOnce + 2U) << "one for each request, and the first";
  const auto isNotClosed = [](const std::string& row) { return !row.ends_with("|closed"); };
  EXPECT_EQ(std::count_if(sessions.begin(), sessions.end(), isNotClosed), 1);
  const auto haveOneName = [](const std::string& a, const std::string& b) { return a[0] == b[0]; };
  EXPECT_EQ(std::adjacent_find(sessions.begin(), sessions.end(), haveOneName), sessions.end());
  RecordProperty("sessions", static_cast<int>(sessions.size()));
}

}  // namespace
}  // namespace tessum
