// Reads titles through a fake accessibility API that counts its objects.

#include "core/workspace/mac/window_title.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/macos/objc/fake_desktop.h"

namespace tessum {
namespace {

using Attribute = fake::Desktop::Attribute;

// Every code of AXError but success.
constexpr std::array kErrors = {-25200, -25201, -25202, -25203, -25204, -25205, -25206, -25207,
                                -25208, -25209, -25210, -25211, -25212, -25213, -25214};

class WindowTitle : public testing::Test {
 protected:
  static constexpr int kProcess = 7;

  ~WindowTitle() override {
    EXPECT_EQ(fake::liveObjects(), 0) << "something leaked or was destroyed twice";
  }

  // The title when the application answers `window` and the window `title`.
  std::optional<std::string> titleWith(Attribute window, Attribute title) {
    desktop_.attribute = [=](int process, const std::string& name) -> Attribute {
      if (process == kProcess && name == "AXFocusedWindow") return window;
      if (process == fake::kWindow && name == "AXTitle") return title;
      ADD_FAILURE() << "asked " << process << " for " << name;
      return {kErrors[0], nullptr};
    };
    return focusedWindowTitleOf(kProcess);
  }

  // The title of a focused window that answers `text`.
  std::optional<std::string> titleOf(std::u16string text) {
    return titleWith({0, fake::makeWindow()}, {0, fake::makeText(std::move(text))});
  }

  fake::Desktop desktop_;
};

TEST_F(WindowTitle, IsTheTextAsItIs) {
  EXPECT_EQ(titleOf(u"Notes"), "Notes");
  EXPECT_EQ(titleOf(u"  Notes\n"), "  Notes\n");
  EXPECT_EQ(titleOf(u"Größe – 日本 \U0001F4DD"), "Größe – 日本 \U0001F4DD");
}

TEST_F(WindowTitle, MayHoldAZeroByte) {
  EXPECT_EQ(titleOf({u'a', u'\0', u'b'}), std::string("a\0b", 3));
}

TEST_F(WindowTitle, IsEmptyWhereTheTextIs) {
  EXPECT_EQ(titleOf(u""), "");
}

TEST_F(WindowTitle, HasAQuestionMarkForHalfACharacter) {
  EXPECT_EQ(titleOf({u'a', 0xD83D, u'b'}), "a?b");
  EXPECT_EQ(titleOf({u'a', 0xDCDD}), "a?");
}

TEST_F(WindowTitle, IsAbsentForEachFailureToTellTheWindow) {
  for (const int error : kErrors) {
    fake::Object* title = fake::makeText(u"Notes");
    EXPECT_EQ(titleWith({error, nullptr}, {0, title}), std::nullopt) << error;
    fake::release(title);  // it was not requested
  }
}

TEST_F(WindowTitle, IsAbsentForEachFailureToTellTheTitle) {
  for (const int error : kErrors) {
    EXPECT_EQ(titleWith({0, fake::makeWindow()}, {error, nullptr}), std::nullopt) << error;
  }
}

TEST_F(WindowTitle, IsAbsentForSuccessWithoutAValue) {
  EXPECT_EQ(titleWith({0, nullptr}, {}), std::nullopt);
  EXPECT_EQ(titleWith({0, fake::makeWindow()}, {0, nullptr}), std::nullopt);
}

TEST_F(WindowTitle, IsAbsentForAValueThatIsNoText) {
  EXPECT_EQ(titleWith({0, fake::makeWindow()}, {0, fake::makeWindow()}), std::nullopt);
}

}  // namespace
}  // namespace tessum
