#include "core/update/release_info.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "core/json/reader.h"

namespace tessum {
namespace {

constexpr auto kFull = R"({
  "tag": "v1.4.0", "name": "Tessum 1.4", "body": "Notes\n", "prerelease": true,
  "publishedAt": "yesterday", "draft": {"unknown": [1, 2]},
  "assets": [
    {"name": "Setup.zip", "size": 9223372036854775807, "contentType": "application/zip", "url": 1},
    {"name": "Setup.dmg", "size": -1, "contentType": ""}]})";

TEST(DecodeReleaseInfo, ReadsEachMemberAndIgnoresOthers) {
  const ReleaseInfo wanted = {.tag = "v1.4.0",
                              .name = "Tessum 1.4",
                              .body = "Notes\n",
                              .prerelease = true,
                              .publishedAt = "yesterday",
                              .assets = {{{.name = "Setup.zip",
                                           .size = std::numeric_limits<std::int64_t>::max(),
                                           .contentType = "application/zip"},
                                          {.name = "Setup.dmg", .size = -1, .contentType = ""}}}};
  EXPECT_EQ(decodeReleaseInfo(kFull), wanted);
}

// A release whose member `key` is written as `value`, or left out where that is empty.
std::string releaseWith(const std::string& key, const std::string& value) {
  std::string text = "{\"unknown\":null";
  for (const std::string member : {"tag", "name", "body", "prerelease", "publishedAt"}) {
    std::string written = member == "prerelease" ? "false" : "\"\"";
    if (member == key) written = value;
    if (!written.empty()) text += ",\"" + member + "\":" + written;
  }
  if (key == "assets") text += ",\"assets\":" + value;
  return text + "}";
}

TEST(DecodeReleaseInfo, NeedsNoAssets) {
  EXPECT_EQ(decodeReleaseInfo(releaseWith("", "")).assets, std::nullopt);
  EXPECT_EQ(decodeReleaseInfo(releaseWith("assets", "null")).assets, std::nullopt);
  EXPECT_EQ(decodeReleaseInfo(releaseWith("assets", "[]")).assets, std::vector<ReleaseAsset>());
}

std::string failureOf(const std::string& text) {
  try {
    static_cast<void>(decodeReleaseInfo(text));
  } catch (const json::DecodingError& error) {
    return error.what();
  }
  return "no failure";
}

struct BadMember {
  std::string key;
  std::string value;
  std::string failure;
};

class DecodeBadRelease : public testing::TestWithParam<BadMember> {};

TEST_P(DecodeBadRelease, NamesTheMemberAndWhatWasExpected) {
  EXPECT_EQ(failureOf(releaseWith(GetParam().key, GetParam().value)), GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(
    Members, DecodeBadRelease,
    testing::Values(
        BadMember{"tag", "", "missing member tag"}, BadMember{"name", "", "missing member name"},
        BadMember{"body", "", "missing member body"},
        BadMember{"prerelease", "", "missing member prerelease"},
        BadMember{"publishedAt", "", "missing member publishedAt"},
        BadMember{"tag", "null", "expected text at tag"},
        BadMember{"tag", "1", "expected text at tag"},
        BadMember{"name", "[]", "expected text at name"},
        BadMember{"body", "null", "expected text at body"},
        BadMember{"prerelease", "0", "expected true or false at prerelease"},
        BadMember{"prerelease", "null", "expected true or false at prerelease"},
        BadMember{"publishedAt", "null", "expected text at publishedAt"},
        BadMember{"assets", "{}", "expected an array at assets"},
        BadMember{"assets", "[null]", "expected an object at assets[0]"},
        BadMember{"assets", R"([{"size":1,"contentType":""}])", "missing member assets[0].name"},
        BadMember{"assets", R"([{"name":"","contentType":""}])", "missing member assets[0].size"},
        BadMember{"assets", R"([{"name":"","size":1}])", "missing member assets[0].contentType"},
        BadMember{"assets", R"([{"name":"","size":1,"contentType":""},{"name":1}])",
                  "expected text at assets[1].name"},
        BadMember{"assets", R"([{"name":"","size":1.5,"contentType":""}])",
                  "expected a 64-bit integer at assets[0].size"},
        BadMember{"assets", R"([{"name":"","size":9223372036854775808,"contentType":""}])",
                  "expected a 64-bit integer at assets[0].size"},
        BadMember{"assets", R"([{"name":"","size":"1","contentType":""}])",
                  "expected a 64-bit integer at assets[0].size"},
        BadMember{"assets", R"([{"name":"","size":1,"contentType":null}])",
                  "expected text at assets[0].contentType"}));

TEST(DecodeReleaseInfo, RefusesWhatIsNotAnObject) {
  EXPECT_EQ(failureOf("[]"), "expected an object at the top level");
  EXPECT_NE(failureOf(""), "no failure");
  EXPECT_NE(failureOf("<html><body>502 Bad Gateway</body></html>"), "no failure");
}

}  // namespace
}  // namespace tessum
