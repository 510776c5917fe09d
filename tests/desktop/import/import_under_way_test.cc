// An import beside other programs, and one that is interrupted.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>

#include "tests/desktop/user.h"
#include "tests/support/eventually.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

constexpr int kEvents = 20'000;

// A bucket with an event every five seconds.
std::string longExport() {
  std::string text = R"({"buckets":{"w":{"type":"currentwindow","events":[)";
  for (int i = 0; i < kEvents; ++i) {
    const Date start = movedBy(at("2025-03-04T00:00:00Z"), 5.0 * i);
    text += (i == 0 ? "" : ",\n") + std::string(R"({"timestamp":")") + internetDateTime(start) +
            R"(","duration":5,"data":{"app":"App )" + std::to_string(i % 10) +
            R"(","title":"Title )" + std::to_string(i % 1000) + "\"}}";
  }
  return text + "]}}}";
}

class LongImport : public testing::Test {
 protected:
  LongImport() {
    writeFile(file, longExport());
    static_cast<void>(user.database());
  }

  int count() {
    Sql sql(user.historyPath());
    sql.run("PRAGMA busy_timeout = 10000;");
    return std::stoi(sql.row("SELECT COUNT(*) FROM activities"));
  }

  User user;
  const std::string file = user.file("export.json");
};

TEST_F(LongImport, IsCompletedAfterAnInterruption) {
  {
    const auto program = user.start({"import", file});
    ASSERT_TRUE(eventually([&] { return count() > 0; }));
    program->kill(SIGKILL);
    EXPECT_EQ(program->finish().signal, SIGKILL);
  }
  const int stored = count();
  EXPECT_LT(stored, kEvents);
  const Outcome outcome = user.run({"import", file});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, ": " + std::to_string(kEvents - stored) +
                                           " sessions added, " + std::to_string(stored) +
                                           " there already.\n"));
  EXPECT_EQ(count(), kEvents);
  EXPECT_EQ(Sql(user.historyPath()).row("PRAGMA integrity_check"), "ok");
}

TEST_F(LongImport, LeavesRoomForOtherWriters) {
  using Steady = std::chrono::steady_clock;
  const auto program = user.start({"import", file});
  ASSERT_TRUE(eventually([&] { return count() > 0; }));
  Sql other(user.historyPath());
  other.run("PRAGMA busy_timeout = 10000;");
  std::vector<std::chrono::duration<double>> waits;
  EXPECT_TRUE(eventually([&] {
    const auto start = Steady::now();
    other.run("INSERT INTO annotations (text, started_at) VALUES ('other', 0);");
    waits.emplace_back(Steady::now() - start);
    return count() == kEvents;
  }));
  EXPECT_EQ(program->finish().code, 0) << program->errors();
  ASSERT_GT(waits.size(), 5U);
  // The system may keep a program from running for longer than that now and then.
  const auto middle = waits.begin() + static_cast<std::ptrdiff_t>(waits.size() / 2);
  std::nth_element(waits.begin(), middle, waits.end());
  EXPECT_LT(middle->count(), 0.2);
}

}  // namespace
}  // namespace tessum
