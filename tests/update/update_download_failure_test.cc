#include <curl/curl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "tests/update/update_download_fixture.h"

namespace tessum {
namespace {

using update_state::Downloading;
using update_state::Error;

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

TEST_F(UpdateDownloadTest, FailsWhenItsNameIsTakenByAFolderInUse) {
  std::filesystem::create_directories(stored("Setup-1.4.0.dmg/mine"));
  const auto server = serve(Routes(kImagePath, answering("image")));
  download(server->url(), server->url());
  EXPECT_EQ(states_.back(),
            failure("Cannot write " + stored("Setup-1.4.0.dmg") + ": " + std::strerror(EISDIR)));
  EXPECT_EQ(server->paths().size(), 2u);
  EXPECT_EQ(storedNames(), std::vector<std::string>{"Setup-1.4.0.dmg"});
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDownloadTest, ReportsTheFallbacksFailureWhenBothFail) {
  const auto primary = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
  }));
  download(primary->url(), unreachableUrl());
  EXPECT_EQ(states_, (States{Downloading{0}, Downloading{0.1},
                             failure(curl_easy_strerror(CURLE_COULDNT_CONNECT))}));
  EXPECT_TRUE(storedNames().empty());
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDownloadTest, FailsWhenFewerBytesComeThanWereDeclared) {
  const auto server = serve(Routes(kImagePath, [](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
  }));
  download(unreachableUrl(), server->url());
  EXPECT_EQ(states_.back(), failure(curl_easy_strerror(CURLE_PARTIAL_FILE)));
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
  EXPECT_EQ(states_, (States{Downloading{0}, failure("Cannot create the folder " + updatesFolder() +
                                                     ": " + std::strerror(ENOTDIR))}));
}

TEST_F(UpdateDownloadTest, FailsWhenItTakesLongerThanADay) {
  Signal isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.give();
    connection.waitUntilClosed();
  });
  makeChecker(unreachableUrl(), server->url());
  checker_->downloadAndInstall(kRelease);
  ASSERT_TRUE(loop_.runUntil([&] { return isAsked.isGiven(); }));
  loop_.advance(86400);
  EXPECT_EQ(states_.back(), failure("The transfer took too long"));
  EXPECT_TRUE(storedNames().empty());
}

// In a child, whose limits are its own.
class UpdateDownloadDeathTest : public UpdateDownloadTest {};

TEST_F(UpdateDownloadDeathTest, FailsWhenTheFileCannotGrow) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto downloadWithinLimit = [this] {
    constexpr rlimit kLimit = {100'000, 100'000};
    std::signal(SIGXFSZ, SIG_IGN);
    if (setrlimit(RLIMIT_FSIZE, &kLimit) != 0) return false;
    const auto server = serve(Routes(kImagePath, answering(std::string(300'000, 'x'))));
    return failsAndLeavesNothing(server->url(),
                                 std::string("Cannot write the file: ") + std::strerror(EFBIG));
  };
  EXPECT_EXIT(std::_Exit(downloadWithinLimit() ? 0 : 1), testing::ExitedWithCode(0), "");
}

// The system starts no process for a user who has reached the limit; root has no limit.
TEST_F(UpdateDownloadDeathTest, FailsWhenThereIsNoRoomForAProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto downloadWithoutProcess = [this] {
    constexpr uid_t kNobody = 65534;
    constexpr rlimit kNone = {0, 0};
    if (geteuid() == 0 && (chown(folder_.path().c_str(), kNobody, kNobody) != 0 ||
                           setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
      return false;
    }
    if (setrlimit(RLIMIT_NPROC, &kNone) != 0) return false;
    return failsAndLeavesNothing(
        unreachableUrl(),
        std::string("Cannot start ") + TESSUM_FETCH_PROGRAM + ": " + std::strerror(EAGAIN));
  };
  EXPECT_EXIT(std::_Exit(downloadWithoutProcess() ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tessum
