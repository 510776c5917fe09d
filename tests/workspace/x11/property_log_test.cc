#include "core/workspace/x11/property_log.h"

#include <gtest/gtest.h>

namespace tessum {
namespace {

using Writes = std::vector<X11PropertyWrite>;

std::string number(std::uint32_t value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

// The first word of a request: its code, a byte that depends on it, and its length in words.
std::string head(char code, std::uint16_t words) {
  return std::string{code, 0} + std::string(reinterpret_cast<const char*>(&words), sizeof words);
}

constexpr char kChange = 18;
constexpr char kDelete = 19;

// All of a change but the first word: window 1, property 2, type 3.
std::string change(std::uint32_t bitsPerItem, std::uint32_t items, const std::string& data) {
  return number(1) + number(2) + number(3) + number(bitsPerItem) + number(items) + data;
}

TEST(PropertyWrites, GivesTheFirstNumberOfEachValue) {
  const std::string one = head(kChange, 7) + change(32, 1, number(40));
  const std::string two = head(kChange, 8) + change(32, 2, number(50) + number(60));
  const std::string removal = head(kDelete, 3) + number(7) + number(8);
  EXPECT_EQ(propertyWrites(one + two + removal + one),
            (Writes{{1, 2, 40}, {1, 2, 50}, {7, 8, std::nullopt}, {1, 2, 40}}));
  EXPECT_EQ(propertyWrites(""), Writes{});
}

TEST(PropertyWrites, AValueOfAnotherKindHasNoNumber) {
  const Writes none{{1, 2, std::nullopt}};
  EXPECT_EQ(propertyWrites(head(kChange, 6) + change(32, 0, "")), none);
  EXPECT_EQ(propertyWrites(head(kChange, 7) + change(8, 4, "text")), none);
  EXPECT_EQ(propertyWrites(head(kChange, 7) + change(16, 2, "text")), none);
  EXPECT_EQ(propertyWrites(head(kChange, 6) + change(32, 1, "")), none) << "it is not there";
}

TEST(PropertyWrites, ALongRequestHasItsLengthInASecondWord) {
  const std::string text(400'000, 'x');
  const std::string request = head(kChange, 0) + number(100'007) + change(8, 400'000, text);
  const std::string next = head(kDelete, 3) + number(7) + number(8);
  EXPECT_EQ(propertyWrites(request + next), (Writes{{1, 2, std::nullopt}, {7, 8, std::nullopt}}));
}

TEST(PropertyWrites, LeavesOtherRequestsOut) {
  const std::string other = head(20, 6) + std::string(20, 'x');
  const std::string removal = head(kDelete, 3) + number(7) + number(8);
  EXPECT_EQ(propertyWrites(other + removal), (Writes{{7, 8, std::nullopt}}));
}

TEST(PropertyWrites, EndsAtTheFirstRequestThatIsNotWhole) {
  const std::string removal = head(kDelete, 3) + number(7) + number(8);
  for (std::size_t length = 0; length < removal.size(); ++length) {
    EXPECT_EQ(propertyWrites(removal + removal.substr(0, length)).size(), 1U) << length;
  }
  for (const std::string& broken :
       {head(kDelete, 0) + number(0), head(kDelete, 0) + number(1), head(kDelete, 0),
        head(kDelete, 0) + number(0xFFFF'FFFF), head(kChange, 0xFFFF)}) {
    EXPECT_EQ(propertyWrites(removal + broken).size(), 1U);
  }
  EXPECT_EQ(propertyWrites(head(kDelete, 2) + number(7) + removal).size(), 1U)
      << "one that is too short for what it says is left out";
}

}  // namespace
}  // namespace tessum
