#include "core/presence/linux/awake_reasons.h"

#include <gtest/gtest.h>

#include "core/base/text.h"

namespace tessum {
namespace {

using Reasons = std::vector<AwakeReason>;

class AwakeReasonsTest : public testing::Test {
 protected:
  std::vector<Reasons> told_;
  AwakeReasons reasons_{[this](const Reasons& reasons) { told_.push_back(reasons); }};
};

TEST_F(AwakeReasonsTest, TellsTheReasonsOfAllSourcesOnce) {
  reasons_.set("one", {});
  reasons_.set("one", {{"b", "2"}, {"a", "1"}});
  reasons_.set("other", {{"b", "2"}});
  reasons_.set("other", {{"b", "2"}, {"c", "3"}});
  reasons_.set("one", {});
  reasons_.set("other", {});
  EXPECT_EQ(told_, (std::vector<Reasons>{{{"a", "1"}, {"b", "2"}},
                                         {{"a", "1"}, {"b", "2"}, {"c", "3"}},
                                         {{"b", "2"}, {"c", "3"}},
                                         {}}));
}

TEST_F(AwakeReasonsTest, TellsNoMoreThanIsAllowed) {
  Reasons many;
  for (int i = 0; i < 1000; ++i) many.push_back({std::to_string(i), ""});
  reasons_.set("one", many);
  reasons_.set("other", many);
  ASSERT_EQ(told_.size(), 1U);
  EXPECT_EQ(told_[0].size(), AwakeReasons::kMost);
}

TEST_F(AwakeReasonsTest, ShortensLongTextsBetweenCharacters) {
  const auto repeated = [](const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
  };
  const std::string full(200, 'x');
  reasons_.set("one", {{full, full + "y"}});
  EXPECT_EQ(told_.back(), (Reasons{{full, full}}));
  reasons_.set("one", {{repeated("ü", 101), repeated("€", 100)}});
  EXPECT_EQ(told_.back(), (Reasons{{repeated("ü", 100), repeated("€", 66)}}));
  reasons_.set("one", {{"x" + repeated("ü", 101), "x" + repeated("😀", 100)}});
  EXPECT_EQ(told_.back(), (Reasons{{"x" + repeated("ü", 99), "x" + repeated("😀", 49)}}));
}

}  // namespace
}  // namespace tessum
