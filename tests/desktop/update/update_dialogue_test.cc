#include "desktop/update/update_dialogue.h"

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/update/update_checker_fixture.h"

namespace tessum {
namespace {

constexpr auto kImagePath = "/releases/macos/v1.4.0/assets/Setup.dmg";

constexpr Delivery kImage{.isDownload = true, .instruction = "Fetch it."};
constexpr Delivery kPackage{.isDownload = false, .instruction = "Get its package."};

std::string jsonWithImage() {
  return R"({"tag":"v1.4.0","name":"","body":"","prerelease":false,"publishedAt":"",)"
         R"("assets":[{"name":"Setup.dmg","size":4,"contentType":""}]})";
}

class UpdateDialogueTest : public UpdateCheckerTest {
 protected:
  // Runs the dialogue to its end. The status is absent if it did not end.
  [[nodiscard]] std::optional<int> talk(bool downloads, bool isWatched = true,
                                        const Delivery& delivery = kImage) {
    std::optional<int> status;
    UpdateDialogue::Output output{.tell = [this](std::string_view text) { told_ += text; },
                                  .complain = [this](std::string_view text) { complaint_ += text; },
                                  .showProgress = {}};
    if (isWatched) {
      output.showProgress = [this](std::string_view text) { shown_.emplace_back(text); };
    }
    UpdateDialogue dialogue(*checker_, downloadOpener_, downloads, delivery, output,
                            [&](int end) { status = end; });
    dialogue.start();
    EXPECT_TRUE(loop_.runUntil([&] { return status.has_value(); }));
    loop_.runPosted();
    return status;
  }

  [[nodiscard]] const UrlOpener& opener() const override { return downloadOpener_; }

  bool isChecked_ = true;  // whether the system checks programs in an image
  const DownloadOpener downloadOpener_{opener_, [this](const std::string&) { return isChecked_; }};
  std::string told_;
  std::string complaint_;
  std::vector<std::string> shown_;
};

TEST_F(UpdateDialogueTest, SaysWhenThereIsNothingNewer) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v1.2"))));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true), 0);
  EXPECT_EQ(told_, "Tessum 1.2.0 is up to date.\n");
  EXPECT_EQ(complaint_, "");
}

TEST_F(UpdateDialogueTest, SaysWhatIsNewerAndHowToGetIt) {
  const auto server = serve(Routes(kLatestPath, answering(jsonWithImage())));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(false), 0);
  EXPECT_EQ(told_,
            "Tessum 1.4.0 is available; this is 1.2.0.\n"
            "Fetch it.\n");
  EXPECT_EQ(server->paths().size(), 1u);
}

TEST_F(UpdateDialogueTest, DownloadsNothingWhereReleasesCannotBeUsed) {
  const auto server =
      serve(Routes(kLatestPath, answering(jsonWithImage())).set(kImagePath, answering("disk")));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true, true, kPackage), 1);
  EXPECT_EQ(told_, "Tessum 1.4.0 is available; this is 1.2.0.\n");
  EXPECT_EQ(complaint_, "Releases are not downloaded on this system. Get its package.\n");
  EXPECT_EQ(server->paths().size(), 1u);
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDialogueTest, DownloadsAndOpensWhenAskedTo) {
  const auto server =
      serve(Routes(kLatestPath, answering(jsonWithImage())).set(kImagePath, answering("disk")));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true), 0);
  const std::string url = "file://" + updatesFolder() + "/Setup.dmg";
  EXPECT_EQ(told_, "Tessum 1.4.0 is available; this is 1.2.0.\nDownloaded and opened " +
                       updatesFolder() + "/Setup.dmg\n");
  EXPECT_EQ(shown_, (std::vector<std::string>{progressText(0), progressText(1), ""}));
  EXPECT_EQ(opener_.urls(), std::vector<std::string>{url});
}

TEST_F(UpdateDialogueTest, SaysWhereAFileIsThatIsNotOpened) {
  isChecked_ = false;
  const auto server =
      serve(Routes(kLatestPath, answering(jsonWithImage())).set(kImagePath, answering("disk")));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true), 0);
  EXPECT_EQ(told_, "Tessum 1.4.0 is available; this is 1.2.0.\nDownloaded to " + updatesFolder() +
                       "/Setup.dmg\n");
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDialogueTest, KeepsTheNameOfAFileFromTheTerminal) {
  const auto server =
      serve(Routes(kLatestPath, answering(jsonWithImage()))
                .set(kImagePath, answering("app",
                                           "Content-Disposition: attachment; "
                                           "filename*=UTF-8''Setup%E2%80%AEgmd.app\r\n")));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true), 0);
  EXPECT_TRUE(told_.ends_with("Downloaded to " + updatesFolder() + "/Setup\uFFFDgmd.app\n"))
      << told_;
  EXPECT_TRUE(opener_.urls().empty());
}

TEST_F(UpdateDialogueTest, ShowsNoProgressWhenNobodyWatches) {
  const auto server =
      serve(Routes(kLatestPath, answering(jsonWithImage())).set(kImagePath, answering("disk")));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true, false), 0);
  EXPECT_TRUE(shown_.empty());
}

TEST_F(UpdateDialogueTest, SaysWhyADownloadFailed) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v1.4.0"))));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(true), 1);
  EXPECT_EQ(told_, "Tessum 1.4.0 is available; this is 1.2.0.\n");
  EXPECT_EQ(complaint_, "No DMG asset found in release\n");
}

TEST_F(UpdateDialogueTest, SaysWhyACheckFailed) {
  makeChecker(unreachableUrl(), unreachableUrl());
  EXPECT_EQ(talk(true), 1);
  EXPECT_EQ(told_, "");
  EXPECT_EQ(complaint_, curl_easy_strerror(CURLE_COULDNT_CONNECT) + std::string("\n"));
}

TEST_F(UpdateDialogueTest, EndsWhenTheVersionIsNotKnown) {
  appInfo_.set(std::nullopt);
  makeChecker(unreachableUrl(), unreachableUrl());
  EXPECT_EQ(talk(true), 1);
  EXPECT_EQ(complaint_, "This copy of Tessum does not know its own version, so it cannot tell.\n");
}

TEST_F(UpdateDialogueTest, KeepsTheServersTextFromTheTerminal) {
  const std::string tag = R"(v9\u001b[2J)" + std::string(1000, 'x');
  const auto server = serve(Routes(kLatestPath, answering(releaseJson(tag))));
  makeChecker(server->url(), unreachableUrl());
  EXPECT_EQ(talk(false), 0);
  EXPECT_EQ(told_.find('\x1B'), std::string::npos);
  EXPECT_LT(told_.size(), 200u);
}

TEST(ProgressText, GrowsWithTheFraction) {
  const std::string blanks(40, ' ');
  std::string blocks;
  for (int i = 0; i < 40; ++i) blocks += "█";
  EXPECT_EQ(progressText(0), "[" + blanks + "]   0 %");
  EXPECT_EQ(progressText(0.5),
            "[" + blocks.substr(0, blocks.size() / 2) + blanks.substr(20) + "]  50 %");
  EXPECT_EQ(progressText(0.999).substr(progressText(0.999).size() - 7), "]  99 %");
  EXPECT_EQ(progressText(1), "[" + blocks + "] 100 %");
}

TEST_F(UpdateDialogueTest, AnnouncesEachReleaseOnce) {
  std::atomic<bool> isNextOut = false;
  const auto server = serve([&](HttpsConnection& connection) {
    connection.respond(releaseJson(isNextOut ? "v1.5.0" : "v1.4.0"));
  });
  makeChecker(server->url(), unreachableUrl());
  std::vector<std::string> lines;
  announceReleases(*checker_, kPackage, [&](std::string_view line) { lines.emplace_back(line); });
  const auto reached = [&](std::size_t requests) {
    return loop_.runUntil([&] {
      return server->paths().size() == requests &&
             std::holds_alternative<update_state::Available>(checker_->currentState());
    });
  };
  ASSERT_TRUE(reached(1));
  loop_.advance(21600);
  ASSERT_TRUE(reached(2));
  loop_.runPosted();
  EXPECT_EQ(lines, std::vector<std::string>{"Tessum 1.4.0 is available; this is 1.2.0. "
                                            "Get its package.\n"});
  isNextOut = true;
  loop_.advance(21600);
  ASSERT_TRUE(loop_.runUntil([&] { return lines.size() == 2; }));
  EXPECT_TRUE(lines.back().starts_with("Tessum 1.5.0 is available; this is 1.2.0."));
}

TEST_F(UpdateDialogueTest, AnnouncesNoFailures) {
  makeChecker(unreachableUrl(), unreachableUrl());
  std::string lines;
  announceReleases(*checker_, kPackage, [&](std::string_view line) { lines += line; });
  ASSERT_TRUE(loop_.runUntil(
      [&] { return std::holds_alternative<update_state::Error>(checker_->currentState()); }));
  loop_.runPosted();
  EXPECT_EQ(lines, "");
}

}  // namespace
}  // namespace tessum
