#include "desktop/update/download_opener.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/update/urls.h"
#include "tests/update/update_checker_fixture.h"

namespace tessum {
namespace {

class DownloadOpenerTest : public testing::Test {
 protected:
  // An opener that can mark files, or cannot.
  [[nodiscard]] DownloadOpener openerThatMarks(bool canMark) {
    return DownloadOpener(system_, [this, canMark](const std::string& path) {
      EXPECT_TRUE(system_.urls().empty()) << "the mark comes before the opening";
      marked_.push_back(path);
      return canMark;
    });
  }

  const std::string image_ = "/home/u/My Updates/caf\u00E9 1.dmg";
  const std::string url_ = fileUrl(image_);
  FakeOpener system_;
  std::vector<std::string> marked_;
};

TEST_F(DownloadOpenerTest, OpensAnImageThatTheSystemChecks) {
  const DownloadOpener opener = openerThatMarks(true);
  EXPECT_FALSE(opener.hasOpened(url_));
  opener.open(url_);
  EXPECT_EQ(marked_, std::vector<std::string>{image_});
  EXPECT_EQ(system_.urls(), std::vector<std::string>{url_});
  EXPECT_TRUE(opener.hasOpened(url_));
  EXPECT_FALSE(opener.hasOpened(fileUrl("/home/u/other.dmg")));
}

TEST_F(DownloadOpenerTest, OpensNothingThatTheSystemDoesNotCheck) {
  const DownloadOpener opener = openerThatMarks(false);
  opener.open(url_);
  EXPECT_TRUE(system_.urls().empty());
  EXPECT_FALSE(opener.hasOpened(url_));
}

TEST_F(DownloadOpenerTest, OpensNothingElse) {
  const DownloadOpener opener = openerThatMarks(true);
  for (const char* name :
       {"Setup.app", "Setup.pkg", "Setup.DMG", "Setup.dmg ", "Setup.dmg.app", "dmg", "x.dmg/y",
        // Shown as "Setupppa.dmg" and the like: an application disguised as an image.
        "Setup\u202Egmd.app", "a\u202E.dmg", "a\u200F.dmg", "a\u200E.dmg", "a\u061C.dmg",
        "a\u2066.dmg", "a\u2069.dmg", "a\u2028.dmg", "a\n.dmg", "a\x1B.dmg", "a\xFF.dmg"}) {
    opener.open(fileUrl(std::string("/home/u/") + name));
  }
  EXPECT_TRUE(marked_.empty());
  EXPECT_TRUE(system_.urls().empty());
}

}  // namespace
}  // namespace tessum
