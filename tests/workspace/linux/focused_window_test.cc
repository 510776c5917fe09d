#include "core/workspace/linux/focused_window.h"

#include <gtest/gtest.h>

#include "core/workspace/title.h"
#include "tests/support/bus/bus_draft_linux.h"

namespace tessum {
namespace {

template <typename... Appended>
std::optional<FocusedWindow> readAfter(const char* types, Appended... appended) {
  BusDraft draft;
  EXPECT_GE(sd_bus_message_append(draft.message(), types, appended...), 0);
  return readFocusedWindow(BusMessage(draft.sealed()));
}

TEST(ReadFocusedWindow, TakesEachPart) {
  const auto window = readAfter("(ssssu)", "org.example.App", "app", "App", "Title", 7);
  EXPECT_EQ(window, (FocusedWindow{"org.example.App", "app", "App", "Title", 7}));
  EXPECT_FALSE(window->isNone());
  EXPECT_TRUE(readAfter("(ssssu)", "", "", "", "", 0)->isNone());
  EXPECT_FALSE(readAfter("(ssssu)", "", "", "", "Title", 0)->isNone());
}

TEST(ReadFocusedWindow, TakesTheProcessAsAText) {
  EXPECT_EQ(readAfter("sssss", "org.example.App", "app", "App", "Title", "7"),
            (FocusedWindow{"org.example.App", "app", "App", "Title", 7}));
  EXPECT_TRUE(readAfter("sssss", "", "", "", "", "")->isNone());
  for (const char* process : {"-1", "7 ", "x", "4294967296"}) {
    EXPECT_EQ(readAfter("sssss", "", "", "", "", process)->process, 0) << process;
  }
}

TEST(ReadFocusedWindow, RefusesOtherTypes) {
  EXPECT_FALSE(readAfter(""));
  EXPECT_FALSE(readAfter("ssssu", "", "", "", "", 1));
  EXPECT_FALSE(readAfter("(ssss)", "", "", "", ""));
  EXPECT_FALSE(readAfter("(ssssi)", "", "", "", "", 1));
  EXPECT_FALSE(readAfter("(ssssus)", "", "", "", "", 1, ""));
}

TEST(DescribeFocusedWindow, LeavesOutWhatTheWindowDoesNotSay) {
  EXPECT_EQ(describe({}, "here"), (WindowDescription{.clientMachine = "here"}));
  EXPECT_EQ(describe({.process = UINT32_MAX}, "here"), describe({}, "here"));
  EXPECT_EQ(describe({"org.example.App", "app", "App", "Title", INT32_MAX}, "here"),
            (WindowDescription{.applicationId = "org.example.App",
                               .instance = "app",
                               .windowClass = "App",
                               .process = INT32_MAX,
                               .clientMachine = "here"}));
}

TEST(DescribeFocusedWindow, CutsLongNames) {
  const std::string longest(kLongestName + 1, 'x');
  const auto description = describe({longest, longest, longest, "", 0}, "here");
  for (const auto& name :
       {description.applicationId, description.instance, description.windowClass}) {
    EXPECT_EQ(name->size(), kLongestName);
  }
}

}  // namespace
}  // namespace tessum
