#include "core/base/text.h"

#include <gtest/gtest.h>

#include <string>

namespace tessum {
namespace {

struct RepairCase {
  std::string bytes;
  std::string text;
};

class ValidUtf8 : public testing::TestWithParam<RepairCase> {};

TEST_P(ValidUtf8, ReplacesEachMaximalBadSequence) {
  EXPECT_EQ(validUtf8(GetParam().bytes), GetParam().text);
}

#define BAD "\xEF\xBF\xBD"

INSTANTIATE_TEST_SUITE_P(
    Bytes, ValidUtf8,
    testing::Values(RepairCase{"", ""}, RepairCase{"plain", "plain"},
                    RepairCase{"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80", "café € 😀"},
                    RepairCase{"a\xFFz", "a" BAD "z"}, RepairCase{"\x80\x80", BAD BAD},
                    RepairCase{"\xC0\xAF", BAD BAD},                  // overlong
                    RepairCase{"\xE0\x80\xAF", BAD BAD BAD},          // overlong
                    RepairCase{"\xED\xA0\x80", BAD BAD BAD},          // a surrogate
                    RepairCase{"\xF4\x90\x80\x80", BAD BAD BAD BAD},  // above U+10FFFF
                    RepairCase{"\xF5", BAD}, RepairCase{"\xE2\x82", BAD},
                    RepairCase{"\xE2\x82z", BAD "z"}, RepairCase{"\xF0\x9F\x98", BAD},
                    RepairCase{"\xF0\x9F\x98\xC3\xA9", BAD "é"}, RepairCase{"\xC3", BAD}));

struct TrimCase {
  std::string text;
  std::string trimmed;
};

class TrimWhiteSpace : public testing::TestWithParam<TrimCase> {};

TEST_P(TrimWhiteSpace, RemovesUnicodeSpaceAtBothEnds) {
  EXPECT_EQ(trimWhiteSpace(GetParam().text), GetParam().trimmed);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TrimWhiteSpace,
    testing::Values(TrimCase{"", ""}, TrimCase{"   ", ""},
                    TrimCase{"  Fixing bug \n", "Fixing bug"},
                    TrimCase{"\t\n\v\f\r x \t\n\v\f\r", "x"}, TrimCase{"a  b", "a  b"},
                    TrimCase{"\u0085\u2028\u2029x\u2029\u2028\u0085", "x"},
                    TrimCase{"\u00A0\u1680\u2000\u200A\u202F\u205F\u3000x\u3000\u205F", "x"},
                    TrimCase{"\u200Bx\u200B",
                             "\u200Bx\u200B"},  // zero width space is not white space
                    TrimCase{"\uFEFFx", "\uFEFFx"}, TrimCase{"é", "é"}));

TEST(TrimBlanks, RemovesSpacesAndTabsAtBothEnds) {
  EXPECT_EQ(trimBlanks(""), "");
  EXPECT_EQ(trimBlanks(" \t "), "");
  EXPECT_EQ(trimBlanks("\t a\t b "), "a\t b");
  EXPECT_EQ(trimBlanks("a\r\n"), "a\r\n");
}

TEST(LowerCaseAscii, ChangesTheLettersOfAsciiOnly) {
  EXPECT_EQ(lowerCaseAscii("@AMZ[`amz{09"), "@amz[`amz{09");
  EXPECT_EQ(lowerCaseAscii("\u00C9A\xC0"), "\u00C9a\xC0");
  EXPECT_EQ(lowerCaseAscii(std::string_view("A\0B", 3)), std::string("a\0b", 3));
}

TEST(Utf8FromLatin1, TurnsEachByteIntoItsCharacter) {
  EXPECT_EQ(utf8FromLatin1(""), "");
  EXPECT_EQ(utf8FromLatin1("plain ~"), "plain ~");
  EXPECT_EQ(utf8FromLatin1("caf\xE9 \x80\xFF"), "caf\u00E9 \u0080\u00FF");
}

}  // namespace
}  // namespace tessum
