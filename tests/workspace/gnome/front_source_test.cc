#include <filesystem>
#include <string>

#include "core/workspace/title.h"
#include "tests/workspace/gnome/gnome_test.h"

namespace tessum {
namespace {

constexpr double kRunning = 1;
constexpr double kDisabled = 2;

TEST_F(GnomeTest, TellsTheWindowThatHasTheFocusAtTheStart) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  EXPECT_EQ(told_, Texts{"none"});
  EXPECT_TRUE(comesTo("editor: Draft"));
  EXPECT_EQ(told_, (Texts{"none", "editor: Draft"}));
  EXPECT_TRUE(notices_.empty());
}

TEST_F(GnomeTest, TellsEachChange) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  extension_->change("editor", "Letter");
  extension_->change("editor", "");
  extension_->change("terminal", "~");
  extension_->change("", "");
  EXPECT_TRUE(comesTo("none"));
  EXPECT_EQ(told_,
            (Texts{"none", "editor: Draft", "editor: Letter", "editor", "terminal: ~", "none"}));
}

// Between two windows of an application the shell may show for a moment that none has the focus.
TEST_F(GnomeTest, AMomentWithoutAWindowIsNotTold) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  extension_->change("", "");
  extension_->change("editor", "Letter");
  EXPECT_TRUE(comesTo("editor: Letter"));
  EXPECT_EQ(told_, (Texts{"none", "editor: Draft", "editor: Letter"}));
}

TEST_F(GnomeTest, NothingIsInFrontWhileTheExtensionIsAway) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  extension_ = nullptr;
  ASSERT_TRUE(comesTo("none"));
  startExtension("editor", "Draft");
  EXPECT_TRUE(comesTo("editor: Draft"));
  EXPECT_TRUE(notices_.empty()) << notices_.front();
}

TEST_F(GnomeTest, WaitsForTheExtensionAndSaysSoOnce) {
  startShell(kDisabled);
  startSource();
  ASSERT_TRUE(isNoticed(1));
  for (int i = 0; i < 3; ++i) {
    const int before = static_cast<int>(shell_->calls.size());
    shell_->emit(kShellPath, kExtensions, "ExtensionStateChanged", "sa{sv}", "other@example", 0);
    ASSERT_TRUE(
        runUntil(loop_, [&] { return static_cast<int>(shell_->calls.size()) >= before + 3; }));
  }
  startExtension("editor", "Draft");
  EXPECT_TRUE(comesTo("editor: Draft"));
  EXPECT_EQ(notices_, Texts{"Recording waits for Tessum's extension of GNOME Shell: it is turned "
                            "off. Run \"Tessum setup\"."});
  EXPECT_FALSE(isOver_);
}

TEST_F(GnomeTest, SaysWhatTheFilesOfTheExtensionTell) {
  startShell(0);
  startSource();
  ASSERT_TRUE(isNoticed(1));
  EXPECT_NE(notices_.back().find("it is not installed"), std::string::npos);
  const std::string extension = "gnome-shell/extensions/focused-window-44@tessum";
  std::filesystem::create_directories(folder_.file(extension));
  writeFile(folder_.file(extension + "/metadata.json"), "{}");
  shell_->emit(kShellPath, kExtensions, "ExtensionStateChanged", "sa{sv}", "other@example", 0);
  ASSERT_TRUE(isNoticed(2));
  EXPECT_NE(notices_.back().find("at your next login"), std::string::npos);
}

TEST_F(GnomeTest, IsSilentWhileTheScreenIsLocked) {
  startShell(kDisabled);
  bool isLocked = true;
  shell_->answer("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "GetActive",
                 [&](sd_bus_message* call) {
                   sd_bus_reply_method_return(call, "b", static_cast<int>(isLocked));
                 });
  startSource();
  ASSERT_TRUE(isAsked("GetActive /org/gnome/ScreenSaver", 1));
  shell_->emit("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "ActiveChanged", "b", 1);
  ASSERT_TRUE(isAsked("GetActive /org/gnome/ScreenSaver", 2));
  EXPECT_TRUE(notices_.empty());
  isLocked = false;
  shell_->emit("/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "ActiveChanged", "b", 0);
  EXPECT_TRUE(isNoticed(1));
}

TEST_F(GnomeTest, AsksAShellThatIsStartingAgain) {
  startSilentShell();
  startSource();
  ASSERT_TRUE(isAsked(std::string("GetAll ") + kShellPath, 1));
  answer(kDisabled);
  EXPECT_TRUE(isNoticed(1));
}

TEST_F(GnomeTest, TheEndOfTheShellEndsIt) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  shell_ = nullptr;
  EXPECT_TRUE(comesTo("none"));
  EXPECT_EQ(notices_, Texts{"GNOME Shell has ended; nothing more can be recorded. "});
  EXPECT_TRUE(isOver_);
}

TEST_F(GnomeTest, ARestartOfTheBusIsSurvived) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  place_.stop();
  ASSERT_TRUE(comesTo("none"));
  place_.start();
  startShell(kRunning);
  startExtension("editor", "Letter");
  EXPECT_TRUE(comesTo("editor: Letter"));
  EXPECT_EQ(notices_, Texts{"The session's message bus has gone away; recording continues when it "
                            "is back. "});
  EXPECT_FALSE(isOver_);
}

TEST_F(GnomeTest, BelievesOnlyTheOwnerOfTheName) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  BusPeer liar(loop_, place_.address());
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  for (int i = 0; i < 10; ++i) {
    const std::string somebody = ":1." + std::to_string(i);
    liar.emitTo(somebody.c_str(), kExtensionPath, kExtension, "Changed", "(ssssu)", "", "liar",
                "liar", "", 0);
  }
  liar.takeName("com.example.Sent");  // answered once these are on their way
  extension_->change("editor", "Letter");
  ASSERT_TRUE(comesTo("editor: Letter"));
  EXPECT_EQ(told_, (Texts{"none", "editor: Draft", "editor: Letter"}));
}

TEST_F(GnomeTest, IgnoresWhatHasOtherTypes) {
  startShell(kRunning);
  startExtension("editor", "Draft");
  startSource();
  ASSERT_TRUE(comesTo("editor: Draft"));
  auto& peer = extension_->peer();
  peer.emit(kExtensionPath, kExtension, "Changed", "");
  peer.emit(kExtensionPath, kExtension, "Changed", "(ssss)", "", "x", "x", "x");
  peer.emit(kExtensionPath, kExtension, "Changed", "ssssu", "", "x", "x", "x", 0);
  peer.emit(kExtensionPath, kExtension, "Changed", "(ssssx)", "", "x", "x", "x", INT64_MAX);
  extension_->change("editor", "Letter");
  ASSERT_TRUE(comesTo("editor: Letter"));
  EXPECT_EQ(told_, (Texts{"none", "editor: Draft", "editor: Letter"}));
}

TEST_F(GnomeTest, CutsTextsOfAnyLengthAndKeepsControlCharacters) {
  startShell(kRunning);
  startExtension("editor\x01", "a\tb\x1B");
  startSource();
  ASSERT_TRUE(comesTo("editor\x01: a\tb\x1B"));
  const std::string longest(3 << 20, 'x');
  extension_->change(longest, longest);
  EXPECT_TRUE(comesTo(longest.substr(0, kLongestName) + ": " + longest.substr(0, kLongestTitle)));
}

}  // namespace
}  // namespace tessum
