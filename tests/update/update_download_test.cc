#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tests/update/update_download_fixture.h"

namespace tessum {
namespace {

using update_state::Available;
using update_state::Checking;
using update_state::Downloading;
using update_state::ReadyToInstall;
using update_state::UpToDate;

TEST_F(UpdateDownloadTest, StoresAndOpensTheImage) {
  const std::string image(300'000, 'x');
  const auto server = serve(Routes(kImagePath, answering(image)));
  download(server->url(), unreachableUrl());

  const std::string url = "file://" + stored("Setup-1.4.0.dmg");
  ASSERT_GE(states_.size(), 3u);
  EXPECT_EQ(states_.front(), UpdateState(Downloading{0}));
  EXPECT_EQ(states_.back(), UpdateState(ReadyToInstall{url}));
  EXPECT_EQ(opener_.urls(), std::vector<std::string>{url});
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), image);
  EXPECT_EQ(storedNames(), std::vector<std::string>{"Setup-1.4.0.dmg"});
  EXPECT_EQ(server->paths(), std::vector<std::string>{kImagePath});
}

TEST_F(UpdateDownloadTest, ReportsTheFractionOfEachChunk) {
  const auto server = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.respond(std::string(100'000, 'x'));
  }));
  download(server->url(), unreachableUrl());

  double before = -1;
  for (std::size_t i = 0; i + 1 < states_.size(); ++i) {
    ASSERT_TRUE(std::holds_alternative<Downloading>(states_[i]));
    const double fraction = std::get<Downloading>(states_[i]).fraction;
    EXPECT_GT(fraction, before);
    EXPECT_NEAR(fraction * 100'000, std::round(fraction * 100'000), 1e-6) << "whole bytes";
    before = fraction;
  }
  EXPECT_EQ(before, 1.0);
}

TEST_F(UpdateDownloadTest, ShowsNoProgressWithoutALength) {
  const auto server = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
    connection.send("half");
    connection.send("half");
  }));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(states_,
            (States{Downloading{0}, ReadyToInstall{"file://" + stored("Setup-1.4.0.dmg")}}));
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "halfhalf");
}

TEST_F(UpdateDownloadTest, ShowsNoProgressOfAnEmptyFile) {
  const auto server = serve(Routes(kImagePath, answering("")));
  download(server->url(), unreachableUrl());
  EXPECT_EQ(states_,
            (States{Downloading{0}, ReadyToInstall{"file://" + stored("Setup-1.4.0.dmg")}}));
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "");
}

TEST_F(UpdateDownloadTest, TakesTheFirstDiskImage) {
  const auto server = serve(Routes("/releases/macos/v1.4.0/assets/b.dmg", answering("b"))
                                .set("/releases/macos/v1.4.0/assets/a.zip", answering("a"))
                                .set("/releases/macos/v1.4.0/assets/c.dmg", answering("c")));
  download(server->url(), unreachableUrl(), releaseOf({"a.zip", "x.DMG", "b.dmg", "c.dmg"}));
  EXPECT_EQ(readFile(stored("b.dmg")), "b");
  EXPECT_EQ(server->paths(), std::vector<std::string>{"/releases/macos/v1.4.0/assets/b.dmg"});
}

TEST_F(UpdateDownloadTest, StoresAnErrorPageLikeAnImage) {
  const auto server = serve(Routes());
  download(server->url(), unreachableUrl());
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "<html>not here</html>");
  EXPECT_EQ(opener_.urls().size(), 1u);
}

TEST_F(UpdateDownloadTest, AsksTheFallbackWhenThePrimaryRefuses) {
  const auto fallback = serve(Routes(kImagePath, answering("image")));
  download(unreachableUrl(), fallback->url());
  EXPECT_EQ(states_, (States{Downloading{0}, Downloading{1},
                             ReadyToInstall{"file://" + stored("Setup-1.4.0.dmg")}}));
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "image");
}

TEST_F(UpdateDownloadTest, LeavesNothingBehindWhenDestroyed) {
  Signal isSent;
  const auto server = serve(Routes(kImagePath, [&](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
    isSent.give();
    connection.waitUntilClosed();
  }));
  makeChecker(server->url(), unreachableUrl());
  checker_->downloadAndInstall(kRelease);
  isSent.wait();
  ASSERT_TRUE(loop_.runUntil([this] { return states_.size() == 2; }));
  EXPECT_EQ(storedNames().size(), 1u) << "the temporary file";
  checker_.reset();
  EXPECT_TRUE(storedNames().empty());
  takeStates();
  loop_.runPosted();
  EXPECT_TRUE(states_.empty());
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDownloadTest, LetsACheckReplaceItsState) {
  Signal isSent;
  Signal isChecked;
  const auto server = serve(Routes(kImagePath, [&](HttpsConnection& connection) {
                              connection.send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nha");
                              isSent.give();
                              isChecked.wait();
                              connection.send("lf");
                            }).set(kLatestPath, answering(releaseJson("v1.0"))));
  makeChecker(server->url(), unreachableUrl());
  checker_->downloadAndInstall(kRelease);
  ASSERT_TRUE(loop_.runUntil([this] { return states_.size() == 2; }));
  checker_->checkForUpdates();
  ASSERT_TRUE(waitFor<UpToDate>());
  isChecked.give();
  ASSERT_TRUE(waitForDownload());
  EXPECT_EQ(states_,
            (States{Downloading{0}, Downloading{0.5}, Checking{}, UpToDate{}, Downloading{1},
                    ReadyToInstall{"file://" + stored("Setup-1.4.0.dmg")}}));
}

// There is room for one end handler: the second call sets it, and the first download that ends
// calls it.
TEST_F(UpdateDownloadTest, GivesTheSecondCallTheEndOfTheFirstDownload) {
  Signal isSecondAsked;
  Signal mayFirstEnd;
  Signal maySecondEnd;
  const auto server =
      serve(Routes("/releases/macos/v1.4.0/assets/first.dmg", [&](HttpsConnection& connection) {
              mayFirstEnd.wait();
              connection.respond("first");
            }).set("/releases/macos/v1.4.0/assets/second.dmg", [&](HttpsConnection& connection) {
        isSecondAsked.give();
        maySecondEnd.wait();
        connection.respond("second");
      }));
  makeChecker(server->url(), unreachableUrl());
  checker_->downloadAndInstall(releaseOf({"first.dmg"}));
  checker_->downloadAndInstall(releaseOf({"second.dmg"}));
  isSecondAsked.wait();
  mayFirstEnd.give();
  ASSERT_TRUE(waitForDownload());
  const std::string firstUrl = "file://" + stored("first.dmg");
  EXPECT_EQ(states_.back(), UpdateState(ReadyToInstall{firstUrl}));

  // The end of the second is dropped; its file is stored all the same.
  maySecondEnd.give();
  ASSERT_TRUE(loop_.runUntil([this] { return std::filesystem::exists(stored("second.dmg")); }));
  loop_.runPosted();
  EXPECT_EQ(states_.back(), UpdateState(Downloading{1}));
  EXPECT_EQ(opener_.urls(), std::vector<std::string>{firstUrl});
}

TEST_F(UpdateDownloadTest, DownloadsAnyAssetForItsCaller) {
  const auto server = serve(Routes("/releases/macos/v2/assets/Notes.txt", answering("notes")));
  makeChecker(unreachableUrl(), server->url());
  std::optional<Outcome<std::string>> downloaded;
  checker_->downloadAsset("v2", "Notes.txt",
                          [&](Outcome<std::string> outcome) { downloaded = std::move(outcome); });
  ASSERT_TRUE(loop_.runUntil([&] { return downloaded.has_value(); }));
  ASSERT_TRUE(std::holds_alternative<std::string>(*downloaded));
  EXPECT_EQ(std::get<std::string>(*downloaded), "file://" + stored("Notes.txt"));
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDownloadTest, FollowsACheckThroughTheSameChecker) {
  const std::string json =
      R"({"tag":"v1.4.0","name":"","body":"","prerelease":false,"publishedAt":"",)"
      R"("assets":[{"name":"Setup.zip","size":9,"contentType":"application/zip"},)"
      R"({"name":"Setup-1.4.0.dmg","size":9,"contentType":"application/x-apple-diskimage"}]})";
  const auto server =
      serve(Routes(kLatestPath, answering(json)).set(kImagePath, answering("image")));
  makeChecker(server->url(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitFor<Available>());
  checker_->downloadAndInstall(std::get<Available>(states_.back()).release);
  ASSERT_TRUE(waitForDownload());
  EXPECT_EQ(readFile(stored("Setup-1.4.0.dmg")), "image");
}

}  // namespace
}  // namespace tessum
