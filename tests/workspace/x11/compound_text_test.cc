#include "core/workspace/x11/compound_text.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tessum {
namespace {

using namespace std::string_literals;

struct CompoundCase {
  std::string bytes;
  std::string text;

  friend std::ostream& operator<<(std::ostream& out, const CompoundCase& testCase) {
    return out << testCase.text;
  }
};

class CompoundText : public testing::TestWithParam<CompoundCase> {};

TEST_P(CompoundText, BecomesUtf8) {
  EXPECT_EQ(utf8FromCompoundText(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    CharacterSets, CompoundText,
    testing::Values(
        CompoundCase{"", ""}, CompoundCase{"plain\ttext\n", "plain\ttext\n"},
        CompoundCase{"caf\xE9", "caf\u00E9"},                            // Latin-1 at first
        CompoundCase{"\x1B-B\xE8 x", "\u010D x"},                        // Latin-2 above
        CompoundCase{"\x1B-L\xBF\xE0\x1B-A\xE9", "\u041F\u0440\u00E9"},  // Cyrillic, and back
        CompoundCase{"\x1B-b\xA4", "\u20AC"},                            // Latin-9
        CompoundCase{"\x1B)I\xB1 \x1B(J~", "\uFF71 ~"},                  // Katakana
        CompoundCase{"a\x1B$(BF|K\\8l\x1B(Bb",
                     "a\u65E5\u672C\u8A9E"
                     "b"},                                                    // Japanese below
        CompoundCase{"\x1B$)A\xD6\xD0\xCE\xC4", "\u4E2D\u6587"},              // Chinese above
        CompoundCase{"\x1B$)C\xC7\xD1", "\uD55C"},                            // Korean above
        CompoundCase{"a\x1B%G\xE2\x82\xAC\x1B%@\xE9", "a\u20AC\u00E9"},       // UTF-8, and back
        CompoundCase{"\x1B%G\xE2\x82\xAC", "\u20AC"},                         // to the end
        CompoundCase{"\x1B%/1\x80\x89koi8-r\x02\xC1\xC2z", "\u0430\u0431z"},  // named
        CompoundCase{"\x9B"
                     "2]abc\x9B]",
                     "abc"}));  // direction

INSTANTIATE_TEST_SUITE_P(
    Damaged, CompoundText,
    testing::Values(
        CompoundCase{"\x1B", ""}, CompoundCase{"a\x1B$(", "a"}, CompoundCase{"a\x1B%/1\x80", "a"},
        CompoundCase{"\x1B%/1\xFF\xFFkoi8-r\x02\xC1", "\u0430"},  // shorter than it says
        CompoundCase{"\x1B%/1\x80\x83"
                     "abcd",
                     "d"},                                                   // without a name
        CompoundCase{"\x1B%/1\x80\x87/../x\x02\xC1z", "\uFFFDz"},            // an unknown one
        CompoundCase{"\x9B", ""}, CompoundCase{"\x1B%G\xE2\x82", "\uFFFD"},  // UTF-8 cut short
        CompoundCase{"\x1B$(BF", "\uFFFD"},                                  // half a character
        CompoundCase{"\x1B-~\xE9z", "\uFFFDz"},                              // an unknown set
        CompoundCase{"\x1B-F\xFFz", "\uFFFDz"},                              // no such character
        CompoundCase{"a\x1B!xb", "ab"}));                                    // no such sequence

}  // namespace
}  // namespace tessum
