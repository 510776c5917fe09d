// Focus changes as fast as the window manager makes them.

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>

#include "tests/support/environment.h"
#include "tests/x11/desktop.h"
#include "tests/x11/recorder.h"

namespace tessum {
namespace {

constexpr int kChanges = 10000;

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
    for (const char* name : {"A", "B", "C"}) windows_.push_back(desktop_.addWindow(name));
    recorder_.emplace(desktop_);
    ASSERT_TRUE(recorder_->comesTo({"C|NULL|NULL|open"}));
  }

  void stop() {
    recorder_->process().kill(SIGTERM);
    ASSERT_EQ(recorder_->process().wait(), kSuccess);
  }

  std::optional<ScopedVariable> folder_ =
      fastFolder() == nullptr
          ? std::nullopt
          : std::optional<ScopedVariable>(std::in_place, "TMPDIR", fastFolder());
  Desktop desktop_;
  std::vector<xcb_window_t> windows_;
  std::optional<Recorder> recorder_;
};

TEST_F(ManyChanges, EachThatIsSeenIsOneSessionAndNoneCrossesAnother) {
  Recorder::Rows expected{"C|NULL|NULL|closed"};
  std::uint32_t writes = writesOf(recorder_->store());
  for (int i = 0; i < kChanges; ++i) {
    desktop_.activate(windows_.at(static_cast<std::size_t>(i % 3)));
    expected.push_back(std::string(1, "ABC"[i % 3]) + "|NULL|NULL|closed");
    writes += 2;  // the end of one session, and the next one
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (writesOf(recorder_->store()) < writes) {
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "change " << i << " was lost";
    }
  }
  expected.back() = expected.back().substr(0, 12) + "open";
  EXPECT_TRUE(recorder_->comesTo(expected)) << recorder_->sessions().size();
  stop();
  EXPECT_EQ(Sql(recorder_->store())
                .row("SELECT count(*) FROM activities a JOIN activities b ON b.id = a.id + 1 "
                     "WHERE a.end_time > b.start_time"),
            "0");
}

TEST_F(ManyChanges, ThatCannotAllBeSeenLeaveTheStoreInOrder) {
  for (int i = 0; i < kChanges / 5; ++i) {
    desktop_.activate(windows_.at(static_cast<std::size_t>(i % 3)));
  }
  desktop_.activate(windows_.at(0));
  ASSERT_TRUE(eventually([&] {
    const auto sessions = recorder_->sessions();
    return !sessions.empty() && sessions.back() == "A|NULL|NULL|open";
  }));
  stop();
  Sql sql(recorder_->store());
  EXPECT_EQ(sql.row("SELECT count(*) FROM activities WHERE end_time IS NULL"), "0");
  EXPECT_EQ(sql.row("SELECT count(*) FROM activities a JOIN activities b ON b.id = a.id + 1 "
                    "WHERE a.end_time > b.start_time OR a.app_name = b.app_name"),
            "0");
  RecordProperty("sessions", sql.row("SELECT count(*) FROM activities"));
}

}  // namespace
}  // namespace tessum
