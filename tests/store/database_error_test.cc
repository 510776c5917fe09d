#include "core/store/database_error.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>

#include "core/store/history.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

TEST(DatabaseError, DescribesWhatFailed) {
  EXPECT_EQ(DatabaseError::openFailed(1, "why").description(), "Failed to open database: why");
  EXPECT_EQ(DatabaseError::prepareFailed(1, "why").description(),
            "Failed to prepare statement: why");
  EXPECT_EQ(DatabaseError::executionFailed(1, "why").description(),
            "Failed to execute statement: why");
}

TEST(DatabaseError, KeepsThePrimaryResultCode) {
  EXPECT_EQ(DatabaseError::openFailed(SQLITE_CANTOPEN, "").code(), SQLITE_CANTOPEN);
  EXPECT_EQ(DatabaseError::openFailed(SQLITE_CANTOPEN_ISDIR, "").code(), SQLITE_CANTOPEN);
  EXPECT_EQ(DatabaseError::prepareFailed(SQLITE_BUSY_SNAPSHOT, "").code(), SQLITE_BUSY);
  EXPECT_EQ(DatabaseError::executionFailed(SQLITE_IOERR_READ, "").code(), SQLITE_IOERR);
}

struct RemedyCase {
  int code;
  const char* part;  // of the remedy
};

class Remedy : public testing::TestWithParam<RemedyCase> {};

// The message does not matter.
TEST_P(Remedy, FollowsTheResultCode) {
  for (const char* message : {"", "database is locked", "disk I/O error"}) {
    const std::string advice = remedy(DatabaseError::executionFailed(GetParam().code, message));
    EXPECT_NE(advice.find(GetParam().part), std::string::npos) << advice;
  }
}

INSTANTIATE_TEST_SUITE_P(Codes, Remedy,
                         testing::Values(RemedyCase{SQLITE_BUSY, "Another program"},
                                         RemedyCase{SQLITE_BUSY_RECOVERY, "Another program"},
                                         RemedyCase{SQLITE_READONLY, "write access"},
                                         RemedyCase{SQLITE_READONLY_DIRECTORY, "write access"},
                                         RemedyCase{SQLITE_CANTOPEN, "read and write access"},
                                         RemedyCase{SQLITE_FULL, "Make room"},
                                         RemedyCase{SQLITE_IOERR, "Check the disk"},
                                         RemedyCase{SQLITE_IOERR_FSYNC, "Check the disk"},
                                         RemedyCase{SQLITE_CORRUPT, "Tessum backup"},
                                         RemedyCase{SQLITE_NOTADB, "Tessum backup"}));

// Reading this file at its beginning is an I/O error: no memory is mapped there.
TEST(Remedy, OfARealReadErrorIsToCheckTheDisk) {
  const std::string unreadable = "/proc/self/mem";
  if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "this system has no " << unreadable;
  try {
    static_cast<void>(History(unreadable, History::Access::read).openSessions());
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.code(), SQLITE_IOERR);
    EXPECT_TRUE(error.description().ends_with("disk I/O error")) << error.description();
    EXPECT_TRUE(remedy(error).starts_with("Check the disk"));
  }
}

}  // namespace
}  // namespace tessum
