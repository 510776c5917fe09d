#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

class PauseCommand : public testing::Test {
 protected:
  [[nodiscard]] std::string path() const { return user_.dataFolder() + "/pause.json"; }

  User user_;
};

TEST_F(PauseCommand, LastsUntilItIsEnded) {
  const Outcome outcome = user_.run({"pause"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "Nothing is recorded until \"Tessum resume\".\n");
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_TRUE(contains(user_.run({"status"}).output, "until \"Tessum resume\""));
  EXPECT_EQ(user_.run({"resume"}).output,
            "The pause has ended. No recorder is running; \"Tessum record\" starts one.\n");
  EXPECT_FALSE(fs::exists(path()));
  EXPECT_EQ(user_.run({"resume"}).output,
            "There is no pause. No recorder is running; \"Tessum record\" starts one.\n");
}

TEST_F(PauseCommand, LastsForATimeOrUntilOne) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"pause", "30m"},
                                                    {"pause", "90"},
                                                    {"pause", "until", "14:00"},
                                                    {"pause", "until", "24:00"}}) {
    const Outcome outcome = user_.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(outcome.output.starts_with("Nothing is recorded until ")) << outcome.output;
  }
  EXPECT_TRUE(contains(user_.run({"pause", "until", "14:00"}).output, "14:00.\n"));
}

TEST_F(PauseCommand, EndsByItself) {
  fs::create_directories(user_.dataFolder());
  writeFile(path(), "{\"until\":1000}\n");
  EXPECT_EQ(user_.run({"status"}).output.find("Paused"), std::string::npos);
  EXPECT_TRUE(user_.run({"resume"}).output.starts_with("There is no pause."));
}

TEST_F(PauseCommand, AFileThatIsNotUnderstoodIsAPauseWithoutEnd) {
  fs::create_directories(user_.dataFolder());
  for (const char* text : {"", "nonsense", "[]", "{\"until\":\"soon\"}"}) {
    writeFile(path(), text);
    EXPECT_TRUE(contains(user_.run({"status"}).output, "Tessum resume")) << text;
  }
}

TEST_F(PauseCommand, WhatIsNeitherLengthNorEndIsRefused) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"pause", "soon"},
                                                    {"pause", "until"},
                                                    {"pause", "until", "25:00"},
                                                    {"pause", "30m", "10m"},
                                                    {"pause", "until", "14:00", "15:00"},
                                                    {"pause", "9999h"}}) {
    const Outcome outcome = user_.run(arguments);
    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
  }
  EXPECT_FALSE(fs::exists(path()));
}

}  // namespace
}  // namespace tessum
