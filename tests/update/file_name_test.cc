#include "core/update/file_name.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tessum {
namespace {

constexpr auto kUrl = "https://updates.example/assets/FromUrl.dmg";

struct HeaderCase {
  std::string header;
  std::string name;
};

class NameInHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(NameInHeader, GoesBeforeTheAddress) {
  EXPECT_EQ(suggestedFileName(kUrl, GetParam().header), GetParam().name) << GetParam().header;
}

INSTANTIATE_TEST_SUITE_P(
    Forms, NameInHeader,
    testing::Values(
        HeaderCase{"attachment; filename=Setup.dmg", "Setup.dmg"},
        HeaderCase{"attachment; filename=\"Setup 1.4.dmg\"", "Setup 1.4.dmg"},
        HeaderCase{"ATTACHMENT;FILENAME = \"Setup.dmg\" ; size=3", "Setup.dmg"},
        HeaderCase{"attachment; x=\"a;filename=no.dmg\"; filename=yes.dmg", "yes.dmg"},
        HeaderCase{R"(attachment; filename="a \"b\" \\c.dmg")", R"(a "b" \c.dmg)"},
        HeaderCase{R"(attachment; x="\";filename=no.dmg"; filename=yes.dmg)", "yes.dmg"},
        HeaderCase{"attachment; filename=\"open.dmg", "open.dmg"},
        HeaderCase{"attachment; filename=one.dmg; filename=two.dmg", "two.dmg"},
        HeaderCase{"attachment; filename=\"100%25.dmg\"", "100%25.dmg"},
        HeaderCase{"attachment; filename=\"caf\xC3\xA9.dmg\"", "café.dmg"},
        HeaderCase{"attachment; filename=\"caf\xE9.dmg\"", "caf\xEF\xBF\xBD.dmg"},
        HeaderCase{"attachment; filename*=UTF-8''caf%C3%A9.dmg", "café.dmg"},
        HeaderCase{"attachment; filename*=utf-8'en'a%20b.dmg", "a b.dmg"},
        HeaderCase{"attachment; filename*=ISO-8859-1''caf%E9.dmg", "café.dmg"},
        HeaderCase{"attachment; filename=plain.dmg; filename*=UTF-8''ext.dmg", "ext.dmg"},
        HeaderCase{"attachment; filename*=UTF-8''ext.dmg; filename=plain.dmg", "ext.dmg"},
        HeaderCase{"attachment; filename*=KOI8-R''x.dmg; filename=plain.dmg", "plain.dmg"},
        HeaderCase{"attachment; filename*=broken; filename=plain.dmg", "plain.dmg"},
        // Without a name the address counts.
        HeaderCase{"attachment", "FromUrl.dmg"}, HeaderCase{"", "FromUrl.dmg"},
        HeaderCase{"attachment; filename", "FromUrl.dmg"},
        HeaderCase{"filename=type-of-disposition.dmg", "FromUrl.dmg"},
        HeaderCase{"attachment; filename*=UTF-8'only-one-quote", "FromUrl.dmg"}));

struct UrlCase {
  std::string url;
  std::string name;
};

class NameInUrl : public testing::TestWithParam<UrlCase> {};

TEST_P(NameInUrl, IsTheLastSegmentOfThePath) {
  EXPECT_EQ(suggestedFileName(GetParam().url, std::nullopt), GetParam().name) << GetParam().url;
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, NameInUrl,
    testing::Values(UrlCase{"https://updates.example/a/Setup-1.4.0.dmg", "Setup-1.4.0.dmg"},
                    UrlCase{"https://updates.example/a/b%20c.dmg?x=/y#/z", "b c.dmg"},
                    UrlCase{"https://updates.example/a/caf%C3%A9.dmg", "café.dmg"},
                    UrlCase{"https://updates.example/a/", "Tessum.dmg"}, UrlCase{"", "Tessum.dmg"},
                    UrlCase{"https://updates.example/a/..%2F..%2Fx", "Tessum.dmg"},
                    UrlCase{"https://updates.example/a/%00", "Tessum.dmg"}));

class HostileName : public testing::TestWithParam<std::string> {};

TEST_P(HostileName, BecomesTheDefault) {
  EXPECT_EQ(suggestedFileName(kUrl, "attachment; filename=\"" + GetParam() + "\""), "Tessum.dmg");
}

INSTANTIATE_TEST_SUITE_P(Names, HostileName,
                         testing::Values("", ".", "..", "../../x", "/etc/x", "a/b", "a/", ".hidden",
                                         "a\x01.dmg", "a\x1B[2J.dmg", "a\tb", "a\x7F.dmg",
                                         std::string("a\0b", 3), std::string(256, 'x'),
                                         std::string(300, 'x')));

TEST(SuggestedFileName, TakesTheLongestNameThatFileSystemsAllow) {
  const std::string longest(255, 'x');
  EXPECT_EQ(suggestedFileName(kUrl, "attachment; filename=" + longest), longest);
}

TEST(SuggestedFileName, MeasuresTheRepairedName) {
  // Each bad byte becomes three.
  const std::string header = "attachment; filename=" + std::string(200, '\xFF');
  EXPECT_EQ(suggestedFileName(kUrl, header), "Tessum.dmg");
}

TEST(SuggestedFileName, FindsSeparatorsBehindTheEncoding) {
  EXPECT_EQ(suggestedFileName(kUrl, "attachment; filename*=UTF-8''..%2F..%2Fx"), "Tessum.dmg");
}

}  // namespace
}  // namespace tessum
