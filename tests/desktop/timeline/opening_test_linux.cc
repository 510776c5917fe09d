// Whether a browser was opened, as the desktop's opener tells.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/child_process.h"

namespace tessum {
namespace {

class TimelineOpener : public testing::Test {
 protected:
  TimelineOpener() {
    user.addSession("Editor", "main.cc", "2025-03-03T09:00:00Z", "2025-03-03T11:00:00Z");
    user.set("PATH", user.file("bin") + ":/usr/bin:/bin");
    std::filesystem::create_directory(user.file("bin"));
  }

  std::string said() {
    const Outcome outcome = user.run({"timeline", "2025-03-03"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
  }

  // Has a desktop whose opener runs `command`.
  void haveOpener(const std::string& command) const {
    const std::string path = user.file("bin/xdg-open");
    writeFile(path, "#!/bin/sh\n" + command + "\n");
    chmod(path.c_str(), 0700);
  }

  User user;
};

constexpr char kOpened[] = "/timeline.html, and your browser was asked to open it.\n";
constexpr char kNotOpened[] =
    "/timeline.html. No browser could be opened; open the file in one yourself.\n";

TEST_F(TimelineOpener, ThatSucceedsHasOpenedIt) {
  haveOpener("exit 0");
  EXPECT_TRUE(contains(said(), kOpened));
}

TEST_F(TimelineOpener, ThatGoesOnHasBecomeTheBrowser) {
  haveOpener("exec sleep 10");
  EXPECT_TRUE(contains(said(), kOpened));
}

TEST_F(TimelineOpener, ThatFindsNoBrowserHasNot) {
  haveOpener("exit 3");
  EXPECT_TRUE(contains(said(), kNotOpened));
}

TEST_F(TimelineOpener, ThatIsMissingHasNot) {
  user.set("PATH", "/nowhere");
  EXPECT_TRUE(contains(said(), kNotOpened));
}

}  // namespace
}  // namespace tessum
