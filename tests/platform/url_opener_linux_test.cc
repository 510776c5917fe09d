// The opener over a stand-in for the desktop's program, found through PATH as the real one is.

#include "core/platform/url_opener.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

TEST(SystemUrlOpener, HandsOverTheUrlAsItIs) {
  const TemporaryFolder folder;
  const std::string program = folder.file("xdg-open");
  writeFile(program, "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" > '" + folder.file("part") +
                         "' && mv '" + folder.file("part") + "' '" + folder.file("told") + "'\n");
  chmod(program.c_str(), 0700);
  const ScopedVariable path("PATH", (folder.path() + ":/usr/bin:/bin").c_str());

  const std::string url = "file:///a%20b/$(touch hurt);'\"&|`x`";
  SystemUrlOpener().open(url);

  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  struct stat found {};
  while (stat(folder.file("told").c_str(), &found) != 0) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the program was not started";
    std::this_thread::yield();
  }
  EXPECT_EQ(readFile(folder.file("told")), "1|" + url + "|");
}

TEST(SystemUrlOpener, TakesADesktopWithoutOpenerInItsStride) {
  const TemporaryFolder empty;
  const ScopedVariable path("PATH", empty.path().c_str());
  SystemUrlOpener().open("file:///x");
}

}  // namespace
}  // namespace tessum
