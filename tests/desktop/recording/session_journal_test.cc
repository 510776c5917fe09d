#include "desktop/recording/session_journal.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/store/database.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

using Rows = std::vector<std::string>;

class SessionJournalTest : public testing::Test {
 protected:
  SessionJournalTest() { const Database made(path_, calendar_); }

  std::int64_t begin(const std::string& app, double start) {
    return journal_->insert({.id = {},
                             .appName = app,
                             .bundleID = {},
                             .title = {},
                             .startTime = {start},
                             .endTime = {}});
  }

  // The contents of the database; a special line while the journal has it locked.
  [[nodiscard]] Rows rows() const {
    try {
      return Sql(path_).rows(
          "SELECT app_name, title, start_time, end_time FROM activities ORDER BY id");
    } catch (const std::runtime_error&) {
      return {"locked"};
    }
  }

  // Whether the database comes to hold `rows`, with as many retries as it takes.
  [[nodiscard]] bool comesTo(const Rows& expected) {
    return loop_.runUntil([&] {
      loop_.advance(SessionJournal::kRetrySeconds);
      return rows() == expected;
    });
  }

  // Advances the loop's time by `seconds` of write attempts.
  void tryFor(double seconds) {
    for (double tried = 0; tried < seconds; tried += SessionJournal::kRetrySeconds) {
      bool isDone = false;
      loop_.advance(SessionJournal::kRetrySeconds);
      queue_.post([&] { loop_.post([&] { isDone = true; }); });
      ASSERT_TRUE(loop_.runUntil([&] { return isDone; }));
    }
  }

  TemporaryFolder folder_;
  const std::string path_ = folder_.file("activities.db");
  const SystemCalendar calendar_{};
  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  ThreadQueue queue_{"test"};
  std::vector<std::string> said_;
  std::unique_ptr<SessionJournal> journal_ = std::make_unique<SessionJournal>(
      path_, loop_, queue_, [this](const std::string& text) { said_.push_back(text); });
};

TEST_F(SessionJournalTest, StoresTheEndOfASessionAndTheNextOneInOneWrite) {
  const auto editor = begin("Editor", 10.5);
  journal_->updateTitle(editor, "a.txt");
  ASSERT_TRUE(comesTo({"Editor|a.txt|10.5|NULL"}));
  const auto before = changeCounter(path_);
  journal_->updateEndTime(editor, {20.25});
  journal_->updateTitle(begin("Mail", 20.25), "Inbox");
  ASSERT_TRUE(comesTo({"Editor|a.txt|10.5|20.25", "Mail|Inbox|20.25|NULL"}));
  tryFor(2);
  EXPECT_EQ(changeCounter(path_), before + 1);
}

TEST_F(SessionJournalTest, ALockOfAWriterDelaysSessionsAndLosesNone) {
  Sql other(path_);
  other.run("BEGIN IMMEDIATE");
  const auto editor = begin("Editor", 10);
  tryFor(1);
  journal_->updateEndTime(editor, {20});
  begin("Mail", 20);
  tryFor(1);
  EXPECT_EQ(rows(), Rows());
  other.run("ROLLBACK");
  EXPECT_TRUE(comesTo({"Editor|NULL|10.0|20.0", "Mail|NULL|20.0|NULL"}));
  EXPECT_EQ(said_, Rows()) << "it was short";
}

TEST_F(SessionJournalTest, ALockOfAReaderDelaysAnEndAndTheReaderIsNotDisturbed) {
  const auto editor = begin("Editor", 10);
  ASSERT_TRUE(comesTo({"Editor|NULL|10.0|NULL"}));
  Sql reader(path_);
  reader.run("BEGIN");
  EXPECT_EQ(reader.rows("SELECT COUNT(*) FROM activities"), Rows{"1"});
  journal_->updateEndTime(editor, {20});
  for (int i = 0; i < 30; ++i) {
    tryFor(SessionJournal::kRetrySeconds);
    EXPECT_EQ(reader.rows("SELECT COUNT(*) FROM activities WHERE end_time IS NULL"), Rows{"1"});
  }
  reader.run("COMMIT");
  EXPECT_TRUE(comesTo({"Editor|NULL|10.0|20.0"}));
  ASSERT_TRUE(loop_.runUntil([&] { return said_.size() == 2; }));
  EXPECT_TRUE(said_[0].starts_with("The history cannot be written: ")) << said_[0];
  EXPECT_EQ(said_[1], "The history can be written again; nothing was lost.");
}

TEST_F(SessionJournalTest, AnEndBeforeTheBeginningTakesBackWhatNeverWas) {
  const auto first = begin("Browser", 10);
  journal_->updateEndTime(first, {100});
  const auto second = begin("Browser", 100);
  ASSERT_TRUE(comesTo({"Browser|NULL|10.0|100.0", "Browser|NULL|100.0|NULL"}));
  journal_->updateEndTime(second, {200});
  const auto third = begin("Browser", 200);
  journal_->updateEndTime(third, {60});
  EXPECT_TRUE(comesTo({"Browser|NULL|10.0|60.0"}));
  begin("Editor", 300);
  EXPECT_TRUE(comesTo({"Browser|NULL|10.0|60.0", "Editor|NULL|300.0|NULL"}));
}

TEST_F(SessionJournalTest, AChangeWhileAWriteIsUnderWayIsWrittenAfterIt) {
  const auto editor = begin("Editor", 10);
  loop_.runPosted();  // the write has begun
  journal_->updateTitle(editor, "a.txt");
  journal_->updateEndTime(editor, {20});
  EXPECT_TRUE(comesTo({"Editor|a.txt|10.0|20.0"}));
}

TEST_F(SessionJournalTest, ASessionThatSomebodyHasDeletedStaysDeleted) {
  const auto editor = begin("Editor", 10);
  ASSERT_TRUE(comesTo({"Editor|NULL|10.0|NULL"}));
  tryFor(1);  // the write is over
  Sql(path_).run("DELETE FROM activities");
  journal_->updateEndTime(editor, {20});
  begin("Mail", 20);
  EXPECT_TRUE(comesTo({"Mail|NULL|20.0|NULL"}));
}

TEST_F(SessionJournalTest, KeepsSoManyAndThenSaysHowManyWereLost) {
  Sql other(path_);
  other.run("BEGIN IMMEDIATE");
  for (std::size_t i = 0; i < SessionJournal::kMostUnsaved + 3; ++i) {
    const auto time = static_cast<double>(i);
    journal_->updateEndTime(begin("App", time), {time + 1});
  }
  tryFor(SessionJournal::kPatienceSeconds + 1);
  other.run("ROLLBACK");
  ASSERT_TRUE(loop_.runUntil([&] {
    loop_.advance(SessionJournal::kRetrySeconds);
    return said_.size() == 2;
  }));
  EXPECT_TRUE(said_[1].find(" 3 sessions were too many to keep, and lost.") != std::string::npos)
      << said_[1];
  EXPECT_TRUE(journal_->finish(60));
  EXPECT_EQ(Sql(path_).rows("SELECT COUNT(*), MIN(start_time) FROM activities"),
            Rows{std::to_string(SessionJournal::kMostUnsaved) + "|3.0"});
}

TEST_F(SessionJournalTest, FinishesOnlyOnceEverythingIsWritten) {
  const auto editor = begin("Editor", 10);
  Sql other(path_);
  other.run("BEGIN IMMEDIATE");
  tryFor(1);
  journal_->updateEndTime(editor, {20});
  std::thread unlock([&] { other.run("ROLLBACK"); });
  EXPECT_TRUE(journal_->finish(60));
  unlock.join();
  EXPECT_EQ(rows(), Rows{"Editor|NULL|10.0|20.0"});
}

TEST_F(SessionJournalTest, SaysWhatCouldNotBeWrittenInTime) {
  begin("Editor", 10);
  Sql other(path_);
  other.run("BEGIN IMMEDIATE");
  EXPECT_FALSE(journal_->finish(0.1));
  EXPECT_EQ(said_, Rows{"1 session could not be written to the history, and lost."});
}

}  // namespace
}  // namespace tessum
