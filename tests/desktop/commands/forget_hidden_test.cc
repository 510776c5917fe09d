#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

using Rows = std::vector<std::string>;

class ForgetHidden : public testing::Test {
 protected:
  ForgetHidden() {
    const Database database = user_.database();
    user_.addSession("Editor", "plan", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
    user_.addSession("Vault", "all passwords", "2025-03-04T10:00:00Z", "2025-03-04T10:30:00Z");
    user_.addSession("Browser", "Diary - Private", "2025-03-04T17:30:00Z", "2025-03-04T18:30:00Z");
  }

  void set(const std::string& rules) const {
#ifdef __APPLE__
    const std::string path = user_.file("Library/Application Support/Tessum/settings.toml");
#else
    const std::string path = user_.file("config/Tessum/settings.toml");
#endif
    fs::create_directories(fs::path(path).parent_path());
    writeFile(path, rules);
  }

  [[nodiscard]] Rows rows() const {
    return Sql(user_.historyPath())
        .rows(
            "SELECT app_name, title, time(start_time, 'unixepoch'), time(end_time, 'unixepoch') "
            "FROM activities ORDER BY start_time");
  }

  User user_;
};

TEST_F(ForgetHidden, SaysWhatAndAsksFirst) {
  set("[[hide]]\napp='Vault'\n[[hide]]\ntitle='Private'\nkeep='app'\n"
      "[[hide]]\nbetween='18:00-08:00'\n");
  const Outcome no = user_.run({"forget", "--hidden"}, "n\n");
  EXPECT_EQ(no.status, 1);
  EXPECT_EQ(no.output,
            "This deletes 1 session, deletes the title of 1 session, cuts a schedule's time out of "
            "1 session.\n"
            "It cannot be undone. Delete? [y/N] Nothing was deleted.\n");
  EXPECT_EQ(rows().size(), 3U);
  const Outcome yes = user_.run({"forget", "--hidden"}, "y\n");
  EXPECT_EQ(yes.status, 0);
  EXPECT_EQ(rows(), (Rows{"Editor|plan|09:00:00|10:00:00", "Browser|NULL|17:30:00|18:00:00"}));
}

TEST_F(ForgetHidden, NoByteOfItStaysInTheFile) {
  set("[[hide]]\napp='Vault'\n[[hide]]\ntitle='Private'\nkeep='app'\n");
  for (const char* text : {"passwords", "Diary"}) {
    ASSERT_NE(readFile(user_.historyPath()).find(text), std::string::npos);
  }
  ASSERT_EQ(user_.run({"forget", "--hidden", "--yes"}).status, 0);
  for (const char* text : {"passwords", "Diary"}) {
    EXPECT_EQ(readFile(user_.historyPath()).find(text), std::string::npos) << text;
  }
  EXPECT_EQ(user_.run({"forget", "--hidden", "--yes"}).output,
            "The history holds nothing that the settings hide.\n");
}

TEST_F(ForgetHidden, ASessionWithAHoleBecomesTwo) {
  set("[[hide]]\napp='Editor'\nbetween='09:15-09:30'\n");
  ASSERT_EQ(user_.run({"forget", "--hidden", "--yes"}).status, 0);
  EXPECT_EQ(rows(), (Rows{"Editor|plan|09:00:00|09:15:00", "Editor|plan|09:30:00|10:00:00",
                          "Vault|all passwords|10:00:00|10:30:00",
                          "Browser|Diary - Private|17:30:00|18:30:00"}));
}

TEST_F(ForgetHidden, WithoutRulesNothingIsForgotten) {
  EXPECT_EQ(user_.run({"forget", "--hidden", "--yes"}).status, 0);
  EXPECT_EQ(rows().size(), 3U);
}

TEST_F(ForgetHidden, GoesWithNoOtherChoice) {
  EXPECT_EQ(user_.run({"forget", "--hidden", "--app", "Editor", "--yes"}).status, 2);
  set("[[hide]]\nap='x'\n");
  EXPECT_EQ(user_.run({"forget", "--hidden", "--yes"}).status, 2);
  EXPECT_EQ(rows().size(), 3U);
}

}  // namespace
}  // namespace tessum
