// Windows with unexpected properties.

#include <atomic>
#include <thread>

#include "core/workspace/title.h"
#include "tests/workspace/x11/x11_test.h"

namespace tessum {
namespace {

using namespace std::string_literals;
using Told = std::vector<std::string>;

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

class HostileWindows : public X11FrontTest {
 protected:
  void SetUp() override {
    desktop_.manageWindows();
    window_ = desktop_.addWindow("App");
    desktop_.publishActiveWindow(window_);
    start();
    ASSERT_EQ(told(), Told{"App"});
  }

  void setTitle(const std::string& bytes) {
    desktop_.setProperty(window_, "_NET_WM_NAME", "UTF8_STRING", bytes);
  }

  // Whether `title` is reported after another one.
  [[nodiscard]] bool comesToTitle(const std::optional<std::string>& title) {
    return runUntil([&] { return this->title() == title; });
  }

  xcb_window_t window_ = 0;
};

TEST_F(HostileWindows, ALongTitleIsKeptWhole) {
  for (const std::string& title : {repeated("\u65E5", 10'000), std::string(kLongestTitle, 'x')}) {
    setTitle(title);
    ASSERT_TRUE(comesToTitle(title)) << title.size();
  }
}

TEST_F(HostileWindows, ALongerTitleIsCutBetweenCharacters) {
  for (const std::string character : {"x", "\u00E9", "\u65E5", "\U0001F4DD"}) {
    const std::size_t kept = kLongestTitle / character.size();
    setTitle(repeated(character, kept + 5));
    ASSERT_TRUE(comesToTitle(repeated(character, kept))) << character;
    setTitle("ab" + repeated(character, kept + 5));
    ASSERT_TRUE(comesToTitle("ab" + repeated(character, (kLongestTitle - 2) / character.size())));
  }
}

TEST_F(HostileWindows, ALongTitleInAnOldEncodingIsCutToo) {
  const std::string latin1(kLongestTitle, '\xE9');
  desktop_.setProperty(window_, "WM_NAME", "STRING", latin1);
  EXPECT_TRUE(comesToTitle(repeated("\u00E9", kLongestTitle / 2)));
  // Each character is in a different character set from the previous one.
  desktop_.setProperty(window_, "WM_NAME", "COMPOUND_TEXT",
                       repeated("\x1B-B\xE9\x1B-A\xE9", kLongestTitle / 8));
  EXPECT_TRUE(comesToTitle(repeated("\u00E9", kLongestTitle / 4)));
}

TEST_F(HostileWindows, InvalidTextIsMadeValid) {
  setTitle("a\xFF\xC3(\xED\xA0\x80z");
  EXPECT_TRUE(comesToTitle("a\uFFFD\uFFFD(\uFFFD\uFFFD\uFFFDz"));
  setTitle(std::string(kLongestTitle, '\xFF'));
  EXPECT_TRUE(comesToTitle(repeated("\uFFFD", kLongestTitle / 3)));
}

TEST_F(HostileWindows, ATitleEndsAtAZeroByte) {
  setTitle("one\0two\0"s);
  EXPECT_TRUE(comesToTitle("one"));
  setTitle("\0two"s);
  EXPECT_TRUE(comesToTitle(std::nullopt));
}

TEST_F(HostileWindows, ControlCharactersAreKept) {
  const std::string title = "\x01\t\r\n\x1B[31m\x7F\u0085\u202E";
  setTitle(title);
  EXPECT_TRUE(comesToTitle(title));
}

TEST_F(HostileWindows, ValuesOfOtherTypesAreAsIfAbsent) {
  setTitle("title");
  ASSERT_TRUE(comesToTitle("title"));
  for (const char* name : {"_NET_WM_NAME", "WM_CLASS", "_GTK_APPLICATION_ID",
                           "_KDE_NET_WM_DESKTOP_FILE", "WM_CLIENT_MACHINE"}) {
    desktop_.setNumber(window_, name, XCB_ATOM_CARDINAL, 7);
  }
  desktop_.setProperty(window_, "_NET_WM_PID", "STRING", "1");
  ASSERT_TRUE(comesTo("?"));
  desktop_.setProperty(window_, "WM_CLASS", "STRING", "a\0Again\0"s);
  EXPECT_TRUE(comesTo("Again"));
}

TEST_F(HostileWindows, AnActiveWindowMayBeAnything) {
  const auto other = desktop_.addWindow("Other");
  const auto root = desktop_.rootWindow();
  for (const std::string& bytes : {""s, "abc"s, std::string(100'000, '\xFF')}) {
    desktop_.setProperty(root, "_NET_ACTIVE_WINDOW", "STRING", bytes);
    ASSERT_TRUE(comesTo("none")) << bytes.size();
    desktop_.publishActiveWindow(0xFFFF'FFFF);
    ASSERT_TRUE(runUntil([&] { return true; }));
    desktop_.publishActiveWindow(other);
    ASSERT_TRUE(comesTo("Other"));
  }
}

TEST_F(HostileWindows, LongNamesAreCut) {
  desktop_.setProperty(window_, "WM_CLASS", "STRING", "a\0"s + std::string(kLongestTitle, 'X'));
  EXPECT_TRUE(comesTo(std::string(kLongestName, 'X')));
}

TEST_F(HostileWindows, TenThousandWindowsAreFollowed) {
  xcb_window_t last = 0;
  for (int i = 0; i < 10'000; ++i) {
    last = desktop_.addBareWindow();
    desktop_.setProperty(last, "WM_CLASS", "STRING", "a\0Class"s + std::to_string(i));
    desktop_.publishActiveWindow(last);
    if (i % 100 != 0) continue;
    ASSERT_TRUE(comesTo("Class" + std::to_string(i)));
  }
  EXPECT_TRUE(comesTo("Class9999"));
  EXPECT_GE(told().size(), 101U);
}

TEST_F(HostileWindows, AStormOfTitlesLeavesTheLoopToOthers) {
  int turns = 0;
  std::atomic<bool> isOver = false;
  std::thread storm([&] {
    for (int i = 0; !isOver; ++i) {
      desktop_.setProperty(window_, "_NET_WM_NAME", "UTF8_STRING", std::to_string(i));
    }
  });
  const auto timer = loop_.startTimer(0.01, [&] {
    if (++turns == 20) loop_.quit();
  });
  loop_.run();
  loop_.invalidateTimer(timer);
  isOver = true;
  storm.join();
  setTitle("calm");
  EXPECT_TRUE(comesToTitle("calm"));
}

}  // namespace
}  // namespace tessum
