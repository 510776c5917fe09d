#include "core/json/padded.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

namespace tessum::json {
namespace {

// Nobody can make a padded view of a text whose padding is unknown.
static_assert(!std::is_constructible_v<PaddedView, std::string_view>);

// The padding after the text of `view`.
std::string paddingOf(PaddedView view) {
  return {view.text().data() + view.text().size(), kPadding};
}

TEST(PaddedString, HoldsATextAndItsPadding) {
  for (const std::string text : {"", "a", "{\"a\":1}"}) {
    const PaddedString copied(text);
    EXPECT_EQ(copied.view().text(), text);
    EXPECT_EQ(paddingOf(copied.view()), std::string(kPadding, '\0'));
    const PaddedString taken = PaddedString::take(text);
    EXPECT_EQ(taken.view(), copied.view());
    EXPECT_EQ(paddingOf(taken.view()), std::string(kPadding, '\0'));
  }
}

TEST(PaddedString, GrowsPieceByPiece) {
  PaddedString padded("");
  std::string whole;
  for (int i = 0; i < 100; ++i) {
    const std::string piece = std::to_string(i);
    padded.append(piece);
    whole += piece;
    EXPECT_EQ(padded.view().text(), whole);
    EXPECT_EQ(paddingOf(padded.view()), std::string(kPadding, '\0'));
  }
}

TEST(PaddedView, GivesPartsThatArePaddedByWhatFollowsThem) {
  const PaddedString padded("head body");
  EXPECT_EQ(padded.view().substr(5).text(), "body");
  const PaddedView head = padded.view().substr(0, 4);
  EXPECT_EQ(head.text(), "head");
  EXPECT_EQ(paddingOf(head).substr(0, 6), std::string(" body\0", 6));
}

TEST(PaddedBuffer, KeepsItsBytesWhenItIsResized) {
  PaddedBuffer buffer;
  EXPECT_EQ(buffer.capacity(), 0U);
  EXPECT_EQ(buffer.view(0, 0).text(), "");
  buffer.resize(4);
  std::memcpy(buffer.data(), "abcd", 4);
  buffer.resize(1 << 20);
  EXPECT_EQ(buffer.capacity(), std::size_t{1} << 20);
  EXPECT_EQ(buffer.view(1, 2).text(), "bc");
  buffer.resize(2);
  EXPECT_EQ(buffer.view(0, 2).text(), "ab");
}

}  // namespace
}  // namespace tessum::json
