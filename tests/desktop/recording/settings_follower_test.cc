#include "desktop/recording/settings_follower.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/platform/url_opener.h"
#include "desktop/settings/settings_file.h"
#include "tests/support/fakes/fake_locations.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

class SettingsFollowerTest : public testing::Test {
 protected:
  SettingsFollowerTest() {
    locations_.home = folder_.path();
    follower_.emplace(host_, loop_,
                      SettingsFollower::Handlers{
                          .onSettings = [this](const Settings& settings) { told_ = settings; },
                          .onPause = [this](const auto& pause) { pause_ = pause; },
                          .say = [this](const std::string& text) { said_.push_back(text); }});
    wait();
  }

  // The delay before the follower reads.
  void wait() { loop_.advance(SettingsFollower::kQuietSeconds); }

  // Whether the follower eventually reports this number of rules.
  [[nodiscard]] bool comesTo(std::size_t rules) {
    return loop_.runUntil([&] {
      wait();
      return told_ && told_->rules.hide.size() == rules;
    });
  }

  [[nodiscard]] std::string path() const { return settingsPath(locations_); }

  TemporaryFolder folder_;
  FakeLocations locations_;
  FakeClock clock_{Date{1000}};
  FakeMainLoop loop_{clock_};
  const SystemCalendar calendar_{};
  const SystemFiles files_{};
  const SystemUrlOpener opener_{};
  const Host host_{clock_, calendar_, locations_, files_, opener_};
  std::optional<Settings> told_;
  std::optional<Pause> pause_;
  std::vector<std::string> said_;
  std::optional<SettingsFollower> follower_;
};

TEST_F(SettingsFollowerTest, TellsOfTheSettingsAsTheyChange) {
  EXPECT_TRUE(comesTo(0));
  writeFile(path(), "[[hide]]\napp='x'");
  EXPECT_TRUE(comesTo(1));
  SystemFiles().replace(path(), "[[hide]]\napp='x'\n[[hide]]\napp='y'");
  EXPECT_TRUE(comesTo(2));
  fs::remove(path());
  EXPECT_TRUE(comesTo(0));
  EXPECT_EQ(said_, std::vector<std::string>());
}

TEST_F(SettingsFollowerTest, WhatIsNotUnderstoodIsSaidOnceAndChangesNothing) {
  writeFile(path(), "[[hide]]\napp='x'");
  ASSERT_TRUE(comesTo(1));
  writeFile(path(), "[[hide]]\napp='('");
  ASSERT_TRUE(loop_.runUntil([&] {
    wait();
    return !said_.empty();
  }));
  ASSERT_EQ(said_.size(), 2U);
  EXPECT_TRUE(said_[0].starts_with(path() + ", line 2, column 5: not a regular expression: "));
  EXPECT_EQ(said_[1], "The settings from before stay in force.");
  EXPECT_EQ(told_->rules.hide.size(), 1U);
  writeFile(path(), "");
  EXPECT_TRUE(comesTo(0));
  EXPECT_EQ(said_.size(), 2U);
}

// The rules stay in force while an editor has removed the file: a second watcher shows that the
// follower's watcher was notified, and the fake time does not advance until the file is back.
TEST_F(SettingsFollowerTest, AFileThatIsSoonBackWasNeverAway) {
  writeFile(path(), "[[hide]]\napp='x'");
  ASSERT_TRUE(comesTo(1));
  told_.reset();
  int events = 0;
  const FileWatcher watcher(loop_, path(), [&] { ++events; });
  fs::rename(path(), path() + "~");
  ASSERT_TRUE(loop_.runUntil([&] { return events > 0; }));
  loop_.advance(SettingsFollower::kQuietSeconds / 2);
  EXPECT_FALSE(told_);
  writeFile(path(), "[[hide]]\napp='x'\n[[hide]]\napp='y'");
  EXPECT_TRUE(comesTo(2));
}

TEST_F(SettingsFollowerTest, TellsOfAPauseAtOnce) {
  EXPECT_FALSE(pause_);
  beginPause({Date{5000}}, locations_, files_);
  EXPECT_TRUE(loop_.runUntil([&] { return pause_.has_value(); }));
  EXPECT_EQ(pause_, Pause{Date{5000}});
  endPause(locations_);
  EXPECT_TRUE(loop_.runUntil([&] { return !pause_; }));
}

TEST_F(SettingsFollowerTest, FindsThePauseThatThereIs) {
  beginPause({}, locations_, files_);
  pause_.reset();
  follower_.emplace(
      host_, loop_,
      SettingsFollower::Handlers{.onSettings = [](const Settings&) {},
                                 .onPause = [this](const auto& pause) { pause_ = pause; },
                                 .say = [](const std::string&) {}});
  EXPECT_EQ(pause_, Pause{});
}

TEST_F(SettingsFollowerTest, AFolderThatCannotBeMadeIsSaid) {
  TemporaryFolder folder;
  FakeLocations locations;
  locations.home = folder.file("home");
  writeFile(locations.home, "");
  const Host host{clock_, calendar_, locations, files_, opener_};
  const SettingsFollower follower(host, loop_,
                                  {.onSettings = [](const Settings&) {},
                                   .onPause = [](const auto&) {},
                                   .say = [this](const auto& text) { said_.push_back(text); }});
  EXPECT_GE(said_.size(), 2U);
}

}  // namespace
}  // namespace tessum
