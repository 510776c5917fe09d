// The history is correct whatever else happens to the database and the recorder.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "core/store/database.h"
#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/mounts_linux.h"
#include "tests/support/server_program.h"
#include "tools/demo_history.h"

namespace tessum {
namespace {

using Rows = Recorder::Rows;

constexpr int kChanges = 120;
constexpr auto kPace = std::chrono::milliseconds(150);

// The longest gap between an end and the next start, or between a change and its session.
constexpr double kTolerance = 0.05;

double secondsNow() {
  return SystemClock().now().secondsSince1970;
}

class TrueHistory : public testing::Test {
 protected:
  void SetUp() override {
    desktop_.startWindowManager();
    for (const char* name : {"A", "B", "C"}) {
      windows_.push_back(desktop_.addWindow(name));
      desktop_.setProperty(windows_.back(), "_NET_WM_NAME", "UTF8_STRING",
                           std::string("title of ") + name);
    }
  }

  [[nodiscard]] std::string path() const { return desktop_.dataFolder() + "/activities.db"; }

  // Ten years of it.
  void writeLongHistory() {
    std::filesystem::create_directories(desktop_.dataFolder());
    const SystemCalendar calendar;
    writeDemoHistory(path(),
                     demoHistory({.days = 3650, .sessionsPerDay = 300, .seed = 1},
                                 SystemClock().now(), calendar),
                     calendar);
    first_ = std::stoll(Sql(path()).row("SELECT MAX(id) FROM activities")) + 1;
  }

  void start() {
    recorder_ = std::make_unique<Recorder>(desktop_);
    // The session of the window in front.
    ASSERT_TRUE(eventually([&] { return rowCount() == 1; }));
  }

  [[nodiscard]] long rowCount() const {
    try {
      return std::stol(
          Sql(path()).row("SELECT COUNT(*) FROM activities WHERE id >= " + std::to_string(first_)));
    } catch (const std::exception&) {
      return -1;  // locked
    }
  }

  // Brings another window to the front at a steady pace, as a fast user might.
  void changeWindows(int changes) {
    auto next = std::chrono::steady_clock::now();
    for (int i = 0; i < changes; ++i) {
      std::this_thread::sleep_until(next += kPace);
      desktop_.activate(windows_[static_cast<std::size_t>(i) % windows_.size()]);
      changed_.push_back(secondsNow());
    }
  }

  void stop() {
    recorder_->process().kill(SIGTERM);
    EXPECT_EQ(recorder_->process().wait(), kSuccess) << recorder_->process().errors();
  }

  // Every change is recorded once, from its time to the next, with its title.
  void expectTruth() {
    struct Row {
      std::string text;
      double start, end;
    };
    std::vector<Row> rows;
    Sql sql(path());
    for (const auto& row : sql.rows("SELECT app_name, title, start_time, COALESCE(end_time, 0) "
                                    "FROM activities WHERE id >= " +
                                    std::to_string(first_) + " ORDER BY start_time, id")) {
      const auto titleEnd = row.find('|', row.find('|') + 1);
      const auto startEnd = row.find('|', titleEnd + 1);
      rows.push_back({row.substr(0, titleEnd),
                      std::stod(row.substr(titleEnd + 1, startEnd - titleEnd - 1)),
                      std::stod(row.substr(startEnd + 1))});
    }
    ASSERT_EQ(rows.size(), changed_.size() + 1) << "and the session before the first change";
    for (std::size_t i = 0; i < changed_.size(); ++i) {
      const std::string name(1, "ABC"[i % 3]);
      SCOPED_TRACE(i);
      EXPECT_EQ(rows[i + 1].text, name + "|title of " + name);
      EXPECT_NEAR(rows[i].end, rows[i + 1].start, kTolerance);
      EXPECT_LE(rows[i + 1].start, changed_[i] + kTolerance);
      EXPECT_GT(rows[i + 1].start, changed_[i] - kSlowest);
      EXPECT_GE(rows[i + 1].end, rows[i + 1].start);
    }
  }

  // From a request for a window until the test has seen it in front, on a busy machine.
  static constexpr double kSlowest = 2;

  Desktop desktop_;
  std::vector<xcb_window_t> windows_;
  std::int64_t first_ = 1;  // row id
  std::unique_ptr<Recorder> recorder_;
  std::vector<double> changed_;
};

TEST_F(TrueHistory, LosesNothingBesideAnAssistantThatSearchesTenYears) {
  writeLongHistory();
  start();
  std::atomic<bool> isDone = false;
  std::thread assistant([&] {
    const auto server = desktop_.start(serverProgram(), {});
    auto next = std::chrono::steady_clock::now();
    while (!isDone) {
      server->writeLine(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":)"
                        R"({"name":"search_activities","arguments":{"query":"not there"}}})");
      EXPECT_TRUE(server->readLine().has_value());
      std::this_thread::sleep_until(next += std::chrono::milliseconds(500));
    }
  });
  changeWindows(kChanges);
  isDone = true;
  assistant.join();
  stop();
  expectTruth();
}

TEST_F(TrueHistory, LosesNothingBesideAReaderThatHoldsALockForHalfAMinute) {
  start();
  Sql reader(path());
  reader.run("BEGIN");
  EXPECT_NE(reader.row("SELECT COUNT(*) FROM activities"), "0");
  std::thread unlock([&] {
    std::this_thread::sleep_for(std::chrono::seconds(30));
    reader.run("COMMIT");
  });
  changeWindows(kChanges);
  EXPECT_EQ(reader.row("SELECT COUNT(*) FROM activities"), "1") << "the reader is not disturbed";
  unlock.join();
  EXPECT_TRUE(eventually([&] { return rowCount() == kChanges + 1; }));
  stop();
  expectTruth();
}

TEST_F(TrueHistory, LosesNothingOnADiskThatFillsUpAndIsFreed) {
  std::filesystem::create_directories(desktop_.dataFolder());
  if (!takeOwnMounts() || !mountDisk("256k", desktop_.dataFolder())) {
    GTEST_SKIP() << "no disk of the test's own can be had here";
  }
  start();
  const std::string ballast = desktop_.dataFolder() + "/ballast";
  {
    std::ofstream file(ballast, std::ios::binary);
    while (file.put('x') && file.flush()) {
    }
  }
  changeWindows(kChanges / 2);
  EXPECT_EQ(rowCount(), 1) << "there was room left";
  std::filesystem::remove(ballast);
  EXPECT_TRUE(eventually([&] { return rowCount() == kChanges / 2 + 1; }));
  stop();
  expectTruth();
  EXPECT_NE(recorder_->process().errors().find("The history cannot be written: "),
            std::string::npos);
}

// Recorders that are killed at arbitrary moments. Each one ends what the previous one left open.
TEST_F(TrueHistory, EndsWhatAKillLeavesOpenWhenItWasLastKnownToLive) {
  constexpr int kKills = 100;
  std::mt19937 random(1);
  std::uniform_int_distribution<int> milliseconds(0, 150);
  std::vector<double> kills;
  for (int i = 0; i < kKills; ++i) {
    Recorder recorder(desktop_);
    desktop_.activate(windows_[static_cast<std::size_t>(i) % windows_.size()]);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
    kills.push_back(secondsNow());
    recorder.process().kill(SIGKILL);
    static_cast<void>(recorder.process().wait());
  }
  Recorder last(desktop_);
  const auto count = [&](const std::string& condition) {
    try {
      return Sql(path()).row("SELECT COUNT(*) FROM activities WHERE " + condition);
    } catch (const std::runtime_error&) {
      return std::string("locked");
    }
  };
  ASSERT_TRUE(
      eventually([&] { return count("start_time > " + std::to_string(kills.back())) == "1"; }));
  EXPECT_EQ(count("end_time IS NULL"), "1") << "the one in front";
  last.process().kill(SIGTERM);
  EXPECT_EQ(last.process().wait(), kSuccess);

  Sql sql(path());
  EXPECT_EQ(sql.row("SELECT COUNT(*) FROM activities WHERE end_time < start_time"), "0");
  for (const auto& row : sql.rows("SELECT start_time, end_time FROM activities ORDER BY id")) {
    const double start = std::stod(row);
    const double end = std::stod(row.substr(row.find('|') + 1));
    const auto kill = std::lower_bound(kills.begin(), kills.end(), start);
    if (kill == kills.end()) continue;  // of the last recorder
    EXPECT_LE(end, *kill + kTolerance);
    EXPECT_GE(end, start);
    EXPECT_LE(*kill - end, 60);
  }
}

}  // namespace
}  // namespace tessum
