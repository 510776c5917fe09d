// The file that a download is stored as.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/update/update_download_fixture.h"

namespace tessum {
namespace {

using update_state::ReadyToInstall;

TEST_F(UpdateDownloadTest, EncodesTheNamesInTheAddress) {
  const auto server =
      serve(Routes("/base/releases/macos/v1.4.0/assets/My%20%3FSetup.dmg", answering("image")));
  download(server->url() + "/base", unreachableUrl(), releaseOf({"My ?Setup.dmg"}));
  EXPECT_EQ(states_.back(), UpdateState(ReadyToInstall{"file://" + stored("My%20%3FSetup.dmg")}));
  EXPECT_EQ(readFile(stored("My ?Setup.dmg")), "image");
}

TEST_F(UpdateDownloadTest, AsksForTheTagAndTheNameAsTheyAre) {
  const std::string path = "/releases/macos/v1/../v2/./assets/../Setup.dmg";
  const auto server = serve(Routes(path, answering("image")));
  ReleaseInfo odd = releaseOf({"../Setup.dmg"});
  odd.tag = "v1/../v2/.";
  download(server->url(), unreachableUrl(), odd);
  EXPECT_EQ(server->paths(), std::vector<std::string>{path});
  EXPECT_EQ(storedNames(), std::vector<std::string>{"Setup.dmg"});
}

TEST_F(UpdateDownloadTest, ReplacesAnEarlierDownload) {
  std::filesystem::create_directories(updatesFolder());
  writeFile(stored("Setup-1.4.0.dmg"), "an older and longer image");
  const auto server = serve(Routes(kImagePath, answering("newer")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "newer");
  EXPECT_EQ(storedNames().size(), 1u);
}

TEST_F(UpdateDownloadTest, ReplacesALinkAndNotItsTarget) {
  std::filesystem::create_directories(updatesFolder());
  writeFile(folder_.file("precious"), "keep");
  std::filesystem::create_symlink(folder_.file("precious"), stored("Setup-1.4.0.dmg"));
  const auto server = serve(Routes(kImagePath, answering("newer")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "newer");
  EXPECT_EQ(readFile(folder_.file("precious")), "keep");
}

TEST_F(UpdateDownloadTest, ReplacesAnEmptyFolderOfTheSameName) {
  std::filesystem::create_directories(stored("Setup-1.4.0.dmg"));
  const auto server = serve(Routes(kImagePath, answering("image")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "image");
}

TEST_F(UpdateDownloadTest, NamesTheFileByTheAddressThatAnswered) {
  const auto server = serve(
      Routes(kImagePath, [](HttpsConnection& connection) {
        connection.respond("gone", "Location: /mirror/Elsewhere.dmg\r\nContent-Disposition: x\r\n",
                           "302 Found");
      }).set("/mirror/Elsewhere.dmg", answering("image")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(readFile(stored("Elsewhere.dmg")), "image");
  EXPECT_EQ(storedNames().size(), 1u);
}

TEST_F(UpdateDownloadTest, RemovesWhatKilledDownloadsLeft) {
  std::filesystem::create_directories(updatesFolder());
  writeFile(stored(".download-abcdef"), "half an image");
  const auto server = serve(Routes(kImagePath, answering("image")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(storedNames(), std::vector<std::string>{"Setup-1.4.0.dmg"});
}

struct NameCase {
  std::string header;
  std::string name;
};

class UpdateDownloadNames : public UpdateDownloadTest,
                            public testing::WithParamInterface<NameCase> {};

TEST_P(UpdateDownloadNames, NeverLeaveTheFolder) {
  const auto server = serve(
      Routes(kImagePath, answering("image", "Content-Disposition: " + GetParam().header + "\r\n")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(readFile(stored(GetParam().name)), "image");
  EXPECT_EQ(storedNames(), std::vector<std::string>{GetParam().name});
}

INSTANTIATE_TEST_SUITE_P(
    Headers, UpdateDownloadNames,
    testing::Values(NameCase{"attachment; filename=\"Other name.dmg\"", "Other name.dmg"},
                    NameCase{"attachment; filename*=UTF-8''caf%C3%A9.dmg", "café.dmg"},
                    NameCase{"attachment", "Setup-1.4.0.dmg"},
                    NameCase{"attachment; filename=\"../../x\"", "Tessum.dmg"},
                    NameCase{"attachment; filename=\"/etc/x\"", "Tessum.dmg"},
                    NameCase{"attachment; filename=\"a/b\"", "Tessum.dmg"},
                    NameCase{"attachment; filename=\"\"", "Tessum.dmg"},
                    NameCase{"attachment; filename=\"..\"", "Tessum.dmg"},
                    NameCase{"attachment; filename=\"a\tb\x01\"", "Tessum.dmg"},
                    NameCase{"attachment; filename*=UTF-8''a%0Ab%00c", "Tessum.dmg"},
                    NameCase{"attachment; filename=" + std::string(300, 'x'), "Tessum.dmg"}));

}  // namespace
}  // namespace tessum
