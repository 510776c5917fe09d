#include "core/workspace/wayland/toplevels.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/workspace/title.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

class Toplevels : public testing::Test {
 protected:
  // A window of that application.
  WaylandToplevels::Id add(const std::string& appId) {
    const auto id = toplevels_.add();
    toplevels_.setAppId(id, appId);
    toplevels_.commit(id);
    return id;
  }

  void setActive(WaylandToplevels::Id id, bool isActive) {
    toplevels_.setActive(id, isActive);
    toplevels_.commit(id);
  }

  // What was active since the last call: "app", "app: title" or "none".
  [[nodiscard]] Told told() {
    Told texts;
    for (const auto& change : toplevels_.takeChanges()) {
      if (!change) {
        texts.emplace_back("none");
      } else {
        texts.push_back(change->title.empty() ? change->appId
                                              : change->appId + ": " + change->title);
      }
    }
    return texts;
  }

  WaylandToplevels toplevels_;
};

TEST_F(Toplevels, OfTwoActiveWindowsTheOneActivatedLastCounts) {
  const auto a = add("a");
  const auto b = add("b");
  setActive(a, true);
  setActive(b, true);
  setActive(a, false);
  EXPECT_EQ(told(), (Told{"a", "b"}));
  setActive(a, true);
  setActive(b, true);
  EXPECT_EQ(told(), (Told{"a"})) << "being active again is nothing new";
  setActive(a, false);
  EXPECT_EQ(told(), (Told{"b"}));
}

TEST_F(Toplevels, BetweenTwoActiveWindowsThereMayBeNone) {
  const auto a = add("a");
  const auto b = add("b");
  setActive(a, true);
  setActive(a, false);
  setActive(b, true);
  EXPECT_EQ(told(), (Told{"a", "none", "b"}));
}

TEST_F(Toplevels, WhatIsSetCountsOnceItIsCommitted) {
  const auto a = add("a");
  setActive(a, true);
  toplevels_.setTitle(a, "one");
  toplevels_.setActive(a, false);
  EXPECT_EQ(told(), Told{"a"});
  toplevels_.setActive(a, true);
  toplevels_.setTitle(a, "two");
  toplevels_.commit(a);
  EXPECT_EQ(told(), Told{"a: two"});
  toplevels_.commit(a);
  EXPECT_EQ(told(), Told{});
}

TEST_F(Toplevels, OtherWindowsChangeUnseen) {
  const auto a = add("a");
  const auto b = add("b");
  setActive(a, true);
  toplevels_.setTitle(b, "secret");
  toplevels_.commit(b);
  toplevels_.remove(b);
  EXPECT_EQ(told(), Told{"a"});
}

TEST_F(Toplevels, AWindowThatGoesUncoversTheOneActivatedBefore) {
  const auto a = add("a");
  const auto b = add("b");
  setActive(a, true);
  setActive(b, true);
  toplevels_.remove(b);
  toplevels_.remove(a);
  EXPECT_EQ(told(), (Told{"a", "b", "a", "none"}));
}

TEST_F(Toplevels, EventsOfWindowsThatAreNotThereChangeNothing) {
  const auto a = add("a");
  toplevels_.remove(a);
  for (const auto id : {a, a + 1, std::numeric_limits<WaylandToplevels::Id>::max()}) {
    toplevels_.setTitle(id, "title");
    toplevels_.setAppId(id, "app");
    toplevels_.setProcess(id, 1);
    setActive(id, true);
    toplevels_.remove(id);
  }
  EXPECT_EQ(told(), Told{});
}

TEST_F(Toplevels, TextsAreMadeValidAndCut) {
  const auto a = add(std::string("a\xFF") + std::string(kLongestName, 'a'));
  toplevels_.setTitle(a, std::string(2 * kLongestTitle, 't'));
  setActive(a, true);
  const auto changes = toplevels_.takeChanges();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_TRUE(changes[0]->appId.starts_with("a\uFFFDa"));
  EXPECT_LE(changes[0]->appId.size(), kLongestName);
  EXPECT_EQ(changes[0]->title.size(), kLongestTitle);
}

TEST_F(Toplevels, AProcessThatCannotBeIsUnknown) {
  const auto a = add("a");
  setActive(a, true);
  static_cast<void>(told());
  const auto processAfter = [&](std::uint32_t process) {
    toplevels_.setProcess(a, process);
    toplevels_.commit(a);
    return toplevels_.takeChanges().at(0)->process;
  };
  for (const std::uint32_t process : {0U, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(processAfter(7), 7);
    EXPECT_EQ(processAfter(process), std::nullopt);
  }
}

}  // namespace
}  // namespace tessum
