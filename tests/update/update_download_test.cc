#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tests/update/update_checker_fixture.h"

#ifdef __linux__
#include "tests/support/mounts_linux.h"
#endif

namespace tessum {
namespace {

using update_state::Available;
using update_state::Checking;
using update_state::Downloading;
using update_state::Error;
using update_state::ReadyToInstall;
using update_state::UpToDate;

using States = std::vector<UpdateState>;

constexpr auto kImagePath = "/releases/macos/v1.4.0/assets/Setup-1.4.0.dmg";

ReleaseInfo releaseOf(const std::vector<std::string>& assetNames) {
  ReleaseInfo made = release("v1.4.0");
  made.assets.emplace();
  for (const auto& name : assetNames) {
    made.assets->push_back({.name = name, .size = 1, .contentType = ""});
  }
  return made;
}

const ReleaseInfo kRelease = releaseOf({"Setup-1.4.0.dmg"});

class UpdateDownloadTest : public UpdateCheckerTest {
 protected:
  // Downloads `wanted` from `primary`, then `fallback`, to the end.
  void download(const std::string& primary, const std::string& fallback,
                const ReleaseInfo& wanted = kRelease) {
    makeChecker(primary, fallback);
    checker_->downloadAndInstall(wanted);
    ASSERT_TRUE(waitForDownload());
    settle();  // the file is opened after the last state
  }

  [[nodiscard]] std::string stored(const std::string& name) const {
    return updatesFolder() + "/" + name;
  }

  // The names of all that lies in the updates folder.
  [[nodiscard]] std::vector<std::string> storedNames() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(updatesFolder())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

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

TEST_F(UpdateDownloadTest, NeedsADiskImage) {
  const auto server = serve(Routes());
  makeChecker(server->url(), server->url());
  for (const ReleaseInfo& without :
       {release("v2"), releaseOf({}), releaseOf({"a.zip", "a.DMG", "dmg", "a.dmg.sig"})}) {
    checker_->downloadAndInstall(without);
    ASSERT_TRUE(waitForDownload());
    EXPECT_EQ(takeStates(), States{Error{"No DMG asset found in release"}});
  }
  EXPECT_TRUE(server->paths().empty());
  EXPECT_FALSE(std::filesystem::exists(updatesFolder()));
}

TEST_F(UpdateDownloadTest, EncodesTheNamesInTheAddress) {
  const auto server =
      serve(Routes("/base/releases/macos/v1.4.0/assets/My%20%3FSetup.dmg", answering("image")));
  download(server->url() + "/base", unreachableUrl(), releaseOf({"My ?Setup.dmg"}));
  EXPECT_EQ(states_.back(), UpdateState(ReadyToInstall{"file://" + stored("My%20%3FSetup.dmg")}));
  EXPECT_EQ(readFile(stored("My ?Setup.dmg")), "image");
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

TEST_F(UpdateDownloadTest, FailsWhenItsNameIsTakenByAFolderInUse) {
  std::filesystem::create_directories(stored("Setup-1.4.0.dmg/mine"));
  const auto server = serve(Routes(kImagePath, answering("image")));
  download(server->url(), server->url());
  EXPECT_EQ(states_.back(), UpdateState(Error{"Download failed: Cannot create " +
                                              stored("Setup-1.4.0.dmg") + ": Is a directory"}));
  EXPECT_EQ(server->paths().size(), 2u);
  EXPECT_EQ(storedNames(), std::vector<std::string>{"Setup-1.4.0.dmg"});
  EXPECT_TRUE(opener_.urls().empty());
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

TEST_F(UpdateDownloadTest, ReportsTheFallbacksFailureWhenBothFail) {
  const auto primary = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
  }));
  download(primary->url(), unreachableUrl());
  EXPECT_EQ(states_, (States{Downloading{0}, Downloading{0.1},
                             Error{"Download failed: Couldn't connect to server"}}));
  EXPECT_TRUE(storedNames().empty());
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDownloadTest, FailsWhenFewerBytesComeThanWereDeclared) {
  const auto server = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
  }));
  download(unreachableUrl(), server->url());
  EXPECT_EQ(states_.back(), UpdateState(Error{"Download failed: Transferred a partial file"}));
  EXPECT_TRUE(storedNames().empty());
}

class UpdateDownloadCut : public UpdateDownloadTest,
                          public testing::WithParamInterface<std::string> {};

TEST_P(UpdateDownloadCut, Fails) {
  const auto server = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\n" + GetParam());
    connection.cut();
  }));
  download(unreachableUrl(), server->url());
  const auto* error = std::get_if<Error>(&states_.back());
  ASSERT_NE(error, nullptr);
  EXPECT_TRUE(error->message.starts_with("Download failed: ")) << error->message;
  EXPECT_TRUE(storedNames().empty());
  EXPECT_TRUE(opener_.urls().empty());
}

INSTANTIATE_TEST_SUITE_P(Answers, UpdateDownloadCut,
                         testing::Values("Content-Length: 100\r\n\r\nten bytes.",
                                         "Content-Length: 100\r\n\r\n", "Content-Len",
                                         "Transfer-Encoding: chunked\r\n\r\n64\r\nten bytes.",
                                         "Transfer-Encoding: chunked\r\n\r\na\r\nten bytes.\r\n"));

TEST_F(UpdateDownloadTest, FailsWhenItsFolderCannotBeMade) {
  writeFile(locations_.dataFolder(), "a file where the folder should be");
  const auto server = serve(Routes(kImagePath, answering("image")));
  download(server->url(), server->url());
  EXPECT_EQ(states_, (States{Downloading{0}, Error{"Download failed: Cannot create the folder " +
                                                   updatesFolder() + ": Not a directory"}}));
}

constexpr int kNoDiskOfItsOwn = 77;

class UpdateDownloadDeathTest : public UpdateDownloadTest {
 protected:
  // The status that a child of the test ends with after a download for which `makeRoomScarce` has
  // left too little room: 0 when it failed for `reason` and left nothing behind.
  int failedDownload(const std::function<int()>& makeRoomScarce, std::string_view reason) {
    if (const int status = makeRoomScarce()) return status;
    const auto server = serve(Routes(kImagePath, answering(std::string(300'000, 'x'))));
    makeChecker(unreachableUrl(), server->url());
    checker_->downloadAndInstall(kRelease);
    if (!waitForDownload()) return 3;
    const auto* error = std::get_if<Error>(&states_.back());
    if (error == nullptr || !error->message.starts_with("Download failed: Cannot write ") ||
        !error->message.ends_with(reason)) {
      return 4;
    }
    settle();
    return storedNames().empty() && opener_.urls().empty() ? 0 : 5;
  }
};

// The system refuses to let a file grow: here by a limit on the process.
TEST_F(UpdateDownloadDeathTest, FailsWhenTheFileCannotGrow) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto limitFiles = [] {
    constexpr rlimit kLimit = {100'000, 100'000};
    std::signal(SIGXFSZ, SIG_IGN);
    return setrlimit(RLIMIT_FSIZE, &kLimit) == 0 ? 0 : 2;
  };
  EXPECT_EXIT(std::_Exit(failedDownload(limitFiles, ": File too large")),
              testing::ExitedWithCode(0), "");
}

#ifdef __linux__

// A small disk that only the child sees. Where it may not mount one the test is skipped.
TEST_F(UpdateDownloadDeathTest, FailsWhenTheDiskIsFull) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto mountSmallDisk = [this] {
    const std::string disk = locations_.dataFolder();
    std::filesystem::create_directories(disk);
    return takeOwnMounts() && mountDisk("64k", disk) ? 0 : kNoDiskOfItsOwn;
  };
  int code = -1;
  const auto succeedsOrHasNoDisk = [&code](int status) {
    code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return code == 0 || code == kNoDiskOfItsOwn;
  };
  EXPECT_EXIT(std::_Exit(failedDownload(mountSmallDisk, ": No space left on device")),
              succeedsOrHasNoDisk, "");
  if (code == kNoDiskOfItsOwn) GTEST_SKIP() << "no disk of its own";
}

#endif

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
  settle();
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

// There is room for one end: the second call takes it, and the first download that ends gives it.
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
  settle();
  EXPECT_EQ(states_.back(), UpdateState(Downloading{1}));
  EXPECT_EQ(opener_.urls(), std::vector<std::string>{firstUrl});
}

TEST_F(UpdateDownloadTest, DownloadsAnyAssetForItsCaller) {
  const auto server = serve(Routes("/releases/macos/v2/assets/Notes.txt", answering("notes")));
  makeChecker(unreachableUrl(), server->url());
  std::promise<Outcome<std::string>> downloaded;
  checker_->downloadAsset("v2", "Notes.txt", [&](Outcome<std::string> outcome) {
    downloaded.set_value(std::move(outcome));
  });
  const auto outcome = downloaded.get_future().get();
  ASSERT_TRUE(std::holds_alternative<std::string>(outcome));
  EXPECT_EQ(std::get<std::string>(outcome), "file://" + stored("Notes.txt"));
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
