#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

class SettingsCommand : public testing::Test {
 protected:
  SettingsCommand() {
#ifdef __APPLE__
    path_ = user_.file("Library/Application Support/Tessum/settings.toml");
#endif
  }

  void write(const std::string& text) const {
    fs::create_directories(fs::path(path_).parent_path());
    writeFile(path_, text);
  }

  User user_;
  std::string path_ = user_.file("config/Tessum/settings.toml");
};

TEST_F(SettingsCommand, ShowsWhatHoldsWithoutAFile) {
  const Outcome outcome = user_.run({"settings"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, path_ +
                                ", which does not exist\n\n"
                                "  away-after  5m     default\n"
                                "  titles      each   default\n"
                                "  day-starts  00:00  default\n");
  EXPECT_FALSE(fs::exists(path_));
}

TEST_F(SettingsCommand, ShowsWhereEachValueComesFrom) {
  write(
      "[record]\ntitles = 'last'\n[[hide]]\napp = 'Vault'\nbetween = '18:00-08:00'\n"
      "[[hide]]\ntitle = 'x'\ndays = ['sat', 'sun']\nkeep = 'app'\n"
      "[[category]]\nname = 'Mail'\ntitle = 'Inbox'\n");
  const Outcome outcome = user_.run({"settings"});
  EXPECT_EQ(outcome.output, path_ +
                                "\n\n"
                                "  away-after  5m                                   default\n"
                                "  titles      last                                 line 2\n"
                                "  day-starts  00:00                                default\n"
                                "  hide        app 'Vault' between 18:00 and 08:00  line 3\n"
                                "  hide        title 'x' on sun sat, keeps the app  line 6\n"
                                "  category    Mail: title 'Inbox'                  line 10\n");
}

TEST_F(SettingsCommand, ChecksTheFile) {
  EXPECT_EQ(user_.run({"settings", "check"}).output,
            path_ + " does not exist, so the defaults apply.\n");
  write("[[hide]]\napp='x'\n");
  const Outcome good = user_.run({"settings", "check"});
  EXPECT_EQ(good.status, 0);
  EXPECT_EQ(good.output, path_ + " is valid: 1 rule, 0 categories.\n");
}

TEST_F(SettingsCommand, AFileThatIsNotUnderstoodEndsEveryCommandThatNeedsIt) {
  write("[[hide]]\ntitel='x'\n");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"settings"}, {"settings", "check"}, {"settings", "try", "x"}}) {
    const Outcome outcome = user_.run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "Tessum: " + path_ +
                  ", line 2, column 1: unknown key \"titel\"; did you mean \"title\"?\n");
  }
}

TEST_F(SettingsCommand, AFileThatCannotBeReadIsAnError) {
  fs::create_directories(path_);
  const Outcome outcome = user_.run({"settings", "check"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(contains(outcome.errors, path_));
}

TEST_F(SettingsCommand, TriesTheRules) {
  write(
      "[[hide]]\ntitle='Private'\nkeep='app'\n[[hide]]\napp='^Vault$'\n"
      "[[category]]\nname='Web'\napp='Browser'\n");
  EXPECT_EQ(user_.run({"settings", "try", "Browser", "News"}).output,
            "Recorded: Browser – News; no rule hides it.\nCategory: Web; line 6\n");
  EXPECT_EQ(user_.run({"settings", "try", "Browser", "News - Private"}).output,
            "Recorded: Browser, without the title; line 1 decides: title 'Private', keeps the app\n"
            "Category: Web; line 6\n");
  EXPECT_EQ(user_.run({"settings", "try", "Vault"}).output,
            "Nothing is recorded; line 4 decides: app '^Vault$'\n");
  EXPECT_EQ(user_.run({"settings", "try"}).status, 2);
}

TEST_F(SettingsCommand, TryingSaysThatRecordingIsPaused) {
  ASSERT_EQ(user_.run({"pause"}).status, 0);
  EXPECT_EQ(user_.run({"settings", "try", "Mail"}).output,
            "Recorded: Mail; no rule hides it.\n"
            "Nothing at all is recorded until \"Tessum resume\".\n");
}

TEST_F(SettingsCommand, EditingBeginsWithATemplateThatNobodyElseCanRead) {
  user_.set("EDITOR", "true");
  const Outcome outcome = user_.run({"settings", "edit"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, path_ + " is valid: 1 rule, 0 categories.\n");
  EXPECT_EQ(fs::status(path_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(SettingsCommand, EditingChecksWhatTheEditorLeaves) {
  writeFile(user_.file("editor"), "#!/bin/sh\nprintf '%s' \"$1\" > \"$2\"\n");
  fs::permissions(user_.file("editor"), fs::perms::owner_all);
  write("");
  user_.set("EDITOR", user_.file("editor") + " nonsense");
  const Outcome outcome = user_.run({"settings", "edit"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(contains(outcome.errors, path_ + ", line 1, column "));
  EXPECT_EQ(readFile(path_), "nonsense");
}

TEST_F(SettingsCommand, TheEditorGetsNoFileThatIsOpenHere) {
  const std::string editor = user_.file("editor");
  const std::string list = user_.file("list");
  writeFile(editor, "#!/bin/sh\nls /dev/fd/ > '" + list + "'\n");
  fs::permissions(editor, fs::perms::owner_all);
  user_.set("EDITOR", editor);
  ChildProcess shell("sh", {.arguments = {"-c", "\"$0\" settings edit 7</dev/null", hostProgram()},
                            .environment = user_.environment()});
  EXPECT_EQ(shell.finish(), kSuccess);
  EXPECT_EQ(readFile(list), "0\n1\n2\n3\n") << "3 is the folder that is being listed";
}

TEST_F(SettingsCommand, AnEditorThatFailsIsAnError) {
  user_.set("EDITOR", "false");
  EXPECT_EQ(user_.run({"settings", "edit"}).status, 1);
  user_.set("EDITOR", user_.file("missing"));
  EXPECT_EQ(user_.run({"settings", "edit"}).status, 1);
}

}  // namespace
}  // namespace tessum
