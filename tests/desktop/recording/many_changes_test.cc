// Focus changes as fast as the window manager makes them.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/environment.h"
#include "tests/support/x11_desktop.h"

namespace tessum {
namespace {

constexpr int kChanges = 10000;
constexpr int kRequestsAtOnce = 2000;

// In memory where the system has such a folder: what is tested are the sessions, not the disk.
const char* fastFolder() {
  return std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : nullptr;
}

// How often the store has been written, as its file counts it: read without a lock.
std::uint32_t writesOf(const std::string& store) {
  constexpr std::streamoff kOffset = 24;
  std::ifstream file(store, std::ios::binary);
  std::array<unsigned char, 4> bytes{};
  file.seekg(kOffset).read(reinterpret_cast<char*>(bytes.data()), bytes.size());
  std::uint32_t count = 0;
  for (const unsigned char byte : bytes) count = count << 8U | byte;
  return count;
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

  [[nodiscard]] char nameOf(xcb_window_t window) const {
    const auto found = std::find(windows_.begin(), windows_.end(), window);
    return "ABCD"[found - windows_.begin()];
  }

  std::optional<ScopedVariable> folder_ =
      fastFolder() == nullptr
          ? std::nullopt
          : std::optional<ScopedVariable>(std::in_place, "TMPDIR", fastFolder());
  Desktop desktop_;
  std::vector<xcb_window_t> windows_;
  std::optional<Recorder> recorder_;
};

// Nothing here waits for the recorder before the last change; it has to keep up or to catch up.

TEST_F(ManyChanges, EachIsOneSessionInOrder) {
  const std::uint32_t writes = writesOf(recorder_->store());
  Recorder::Rows expected{"D|NULL|NULL|closed"};
  for (int i = 0; i < kChanges; ++i) {
    desktop_.activate(windowOfChange(i));
    expected.push_back(std::string(1, "ABC"[i % 3]) + "|NULL|NULL|closed");
  }
  expected.back() = expected.back().substr(0, 12) + "open";
  // The end of one session and the next one are two writes.
  EXPECT_TRUE(eventually([&] { return writesOf(recorder_->store()) >= writes + 2 * kChanges; }))
      << writesOf(recorder_->store()) - writes;
  EXPECT_TRUE(recorder_->comesTo(expected)) << recorder_->sessions().size();
}

TEST_F(ManyChanges, NoneThatOthersSeeIsLostAndNoneIsInvented) {
  desktop_.activate(windowOfChange(0));
  for (int i = 1; i < kRequestsAtOnce; ++i) desktop_.request(windowOfChange(i));
  desktop_.request(windows_[3]);
  const auto seen = desktop_.activeWindowsUntil(windows_[3]);

  Recorder::Rows sessions;
  std::uint32_t writes = 0;
  ASSERT_TRUE(eventually([&] {
    if (std::exchange(writes, writesOf(recorder_->store())) != writes) return false;
    sessions = recorder_->sessions();
    return sessions.size() > 1 && sessions.back() == "D|NULL|NULL|open";
  })) << sessions.size();
  EXPECT_LE(sessions.size(), kRequestsAtOnce + 2U) << "one for each request, and the first";
  const auto isNotClosed = [](const std::string& row) { return !row.ends_with("|closed"); };
  EXPECT_EQ(std::count_if(sessions.begin(), sessions.end(), isNotClosed), 1);
  const auto haveOneName = [](const std::string& a, const std::string& b) { return a[0] == b[0]; };
  EXPECT_EQ(std::adjacent_find(sessions.begin(), sessions.end(), haveOneName), sessions.end());

  auto session = sessions.begin();
  for (const xcb_window_t window : seen) {
    if (window == 0) continue;  // between two windows
    const char name = nameOf(window);
    session = std::find_if(session, sessions.end(),
                           [&](const std::string& row) { return row[0] == name; });
    ASSERT_NE(session, sessions.end()) << name << " is missing";
  }
  RecordProperty("sessions", static_cast<int>(sessions.size()));
}

}  // namespace
}  // namespace tessum
