// A running recorder follows settings and pauses that other programs change.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/x11_desktop.h"

namespace tessum {
namespace {

using Rows = Recorder::Rows;

constexpr ExitStatus kWrongSettings{.code = 2, .signal = {}};

class RecordSettings : public testing::Test {
 protected:
  RecordSettings() {
    desktop_.startWindowManager();
    std::filesystem::create_directories(desktop_.home().file("config/Tessum"));
  }

  [[nodiscard]] std::string path() const {
    return desktop_.home().file("config/Tessum/settings.toml");
  }

  xcb_window_t addWindow(const std::string& name, const std::string& title) {
    const xcb_window_t window = desktop_.addWindow(name);
    setTitle(window, title);
    return window;
  }

  void setTitle(xcb_window_t window, const std::string& title) {
    desktop_.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", title);
  }

  // Whether any file of the data folder holds `text`.
  [[nodiscard]] bool holdsBytes(const std::string& text) const {
    for (const auto& entry : std::filesystem::directory_iterator(desktop_.dataFolder())) {
      if (readFile(entry.path().string()).find(text) != std::string::npos) return true;
    }
    return false;
  }

  Desktop desktop_;
};

TEST_F(RecordSettings, WhatIsHiddenIsInNoFile) {
  writeFile(path(), "[[hide]]\napp='Vault'\n[[hide]]\ntitle='Private'\nkeep='app'\n");
  Recorder recorder(desktop_);
  const xcb_window_t editor = addWindow("Editor", "Plan");
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|open"}));
  addWindow("Vault", "Passwords");
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed"}));
  desktop_.activate(editor);
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed", "Editor|NULL|Plan|open"}));
  setTitle(editor, "Diary - Private");
  ASSERT_TRUE(recorder.comesTo(
      {"Editor|NULL|Plan|closed", "Editor|NULL|Plan|closed", "Editor|NULL|NULL|open"}));
  for (const char* text : {"Vault", "Passwords", "Diary"}) EXPECT_FALSE(holdsBytes(text)) << text;
  EXPECT_TRUE(holdsBytes("Plan"));
}

TEST_F(RecordSettings, RulesThatChangeAreObeyedWithoutARestart) {
  Recorder recorder(desktop_);
  addWindow("Editor", "Plan");
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|open"}));
  writeFile(path(), "[[hide]]\napp='Editor'\n");
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed"}));
  std::filesystem::remove(path());
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed", "Editor|NULL|Plan|open"}));
}

TEST_F(RecordSettings, ThoseThatAreNotUnderstoodLeaveTheOldOnesInForce) {
  writeFile(path(), "[[hide]]\napp='Vault'\n");
  Recorder recorder(desktop_);
  addWindow("Editor", "Plan");
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|open"}));
  writeFile(path(), "[[hide]]\nap='Vault'\n");
  const std::string complaint = "Tessum: " + path() +
                                ", line 2, column 1: unknown key \"ap\"; did you mean \"app\"?\n"
                                "Tessum: The settings from before stay in force.\n";
  EXPECT_TRUE(eventually([&] { return recorder.process().errors() == complaint; }))
      << recorder.process().errors();
  addWindow("Vault", "Passwords");
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed"}));
  EXPECT_FALSE(holdsBytes("Vault"));
}

TEST_F(RecordSettings, NoRecorderStartsWithThoseThatAreNotUnderstood) {
  writeFile(path(), "[[hide]]\nap='Vault'\n");
  const auto recorder = desktop_.start(TESSUM_PROGRAM, {"record", "--no-update-check"});
  EXPECT_EQ(recorder->wait(), kWrongSettings);
  EXPECT_FALSE(std::filesystem::exists(desktop_.dataFolder()));
}

TEST_F(RecordSettings, APauseIsObeyedAtOnceAndOutlivesTheRecorder) {
  addWindow("Editor", "Plan");
  {
    Recorder recorder(desktop_);
    ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|open"}));
    desktop_.run(TESSUM_PROGRAM, {"pause"});
    ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed"}));
    recorder.process().kill(SIGTERM);
    EXPECT_EQ(recorder.process().wait(), kSuccess);
  }
  Recorder recorder(desktop_);
  EXPECT_TRUE(eventually([&] {
    return recorder.process().errors() == "Tessum: Recording is paused until \"Tessum resume\".\n";
  })) << recorder.process().errors();
  addWindow("Other", "Secret");
  desktop_.run(TESSUM_PROGRAM, {"resume"});
  ASSERT_TRUE(recorder.comesTo({"Editor|NULL|Plan|closed", "Other|NULL|Secret|open"}));
}

}  // namespace
}  // namespace tessum
