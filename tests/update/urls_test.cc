#include "core/update/urls.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

TEST(ConfiguredBaseUrls, AreThoseOfTheBuildWithoutEmptyOnes) {
  EXPECT_EQ(configuredBaseUrls(), std::vector<std::string>{"https://primary.example/"});
}

TEST(IsBaseUrl, AcceptsWhatTheConfigurationAccepts) {
  std::istringstream lines(readFile(TESSUM_BASE_URLS));
  int texts = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('#')) continue;
    const bool isBase = line.starts_with("yes ");
    const std::string text = line == "no" ? "" : line.substr(line.find(' ') + 1);
    EXPECT_EQ(isBaseUrl(text), isBase) << line;
    ++texts;
  }
  EXPECT_GT(texts, 50);
}

TEST(IsBaseUrl, RefusesBytesThatNoLineHolds) {
  EXPECT_FALSE(isBaseUrl("https://updates.example/\n"));
  EXPECT_FALSE(isBaseUrl("https://updates.example\n"));
  EXPECT_FALSE(isBaseUrl(std::string("https://updates.example/\0", 25)));
}

TEST(LatestReleaseUrl, PutsExactlyOneSlashBehindTheBase) {
  const std::string wanted = "https://updates.example/releases/macos/latest";
  EXPECT_EQ(latestReleaseUrl("https://updates.example"), wanted);
  EXPECT_EQ(latestReleaseUrl("https://updates.example/"), wanted);
  EXPECT_EQ(latestReleaseUrl("https://updates.example//"), wanted);
  EXPECT_EQ(latestReleaseUrl("https://updates.example/a/b"),
            "https://updates.example/a/b/releases/macos/latest");
}

struct AssetCase {
  std::string tag;
  std::string name;
  std::string path;
};

class AssetUrl : public testing::TestWithParam<AssetCase> {};

TEST_P(AssetUrl, KeepsTheTagAndEncodesWhatAPathMayNotHold) {
  EXPECT_EQ(assetUrl("https://updates.example/", GetParam().tag, GetParam().name),
            "https://updates.example/releases/macos/" + GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Names, AssetUrl,
    testing::Values(AssetCase{"v1.4.0", "Setup-1.4.0.dmg", "v1.4.0/assets/Setup-1.4.0.dmg"},
                    AssetCase{"1/2", "a/b.dmg", "1/2/assets/a/b.dmg"},
                    AssetCase{"v1", "a b.dmg", "v1/assets/a%20b.dmg"},
                    AssetCase{"v1?x=1#y", "100%.dmg", "v1%3Fx=1%23y/assets/100%25.dmg"},
                    AssetCase{"v1", "caf\xC3\xA9.dmg", "v1/assets/caf%C3%A9.dmg"},
                    AssetCase{"v1", "-._~!$&'()*+,;=:@", "v1/assets/-._~!$&'()*+,;=:@"},
                    AssetCase{"v1", "\"<>[]\\^`{|}", "v1/assets/%22%3C%3E%5B%5D%5C%5E%60%7B%7C%7D"},
                    AssetCase{"v1", std::string("a\0b\r\n", 5), "v1/assets/a%00b%0D%0A"},
                    AssetCase{"", "", "/assets/"}));

TEST(FileUrl, EncodesThePath) {
  EXPECT_EQ(fileUrl("/home/u/My Data/100%.dmg"), "file:///home/u/My%20Data/100%25.dmg");
}

TEST(FilePath, IsThePathOfItsUrl) {
  for (const std::string path : {"/home/u/My Data/100%.dmg", "/caf\xC3\xA9/%41", "/"}) {
    EXPECT_EQ(filePath(fileUrl(path)), path);
  }
}

TEST(PercentDecoded, ReplacesWholeSequencesOnly) {
  EXPECT_EQ(percentDecoded("a%20b%2fc%2F%C3%a9"), "a b/c/\xC3\xA9");
  EXPECT_EQ(percentDecoded("%"), "%");
  EXPECT_EQ(percentDecoded("%4"), "%4");
  EXPECT_EQ(percentDecoded("%4g%g4%41"), "%4g%g4A");
  EXPECT_EQ(percentDecoded("%%41%2541"), "%A%41");
  EXPECT_EQ(percentDecoded("%00"), std::string(1, '\0'));
  EXPECT_EQ(percentDecoded(""), "");
}

}  // namespace
}  // namespace tessum
