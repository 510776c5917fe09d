// A download onto a small disk that only a child of the test sees.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/mounts_linux.h"
#include "tests/update/update_download_fixture.h"

namespace tessum {
namespace {

constexpr int kNoDiskOfItsOwn = 77;

class FullDiskDeathTest : public UpdateDownloadTest {
 protected:
  // The status with which the child ends: 0 when the download failed as it should.
  int downloadOntoSmallDisk() {
    const std::string disk = locations_.dataFolder();
    std::filesystem::create_directories(disk);
    if (!takeOwnMounts() || !mountDisk("64k", disk)) return kNoDiskOfItsOwn;
    const auto server = serve(Routes(kImagePath, answering(std::string(300'000, 'x'))));
    const std::string reason = std::string("Cannot write the file: ") + std::strerror(ENOSPC);
    return failsAndLeavesNothing(server->url(), reason) ? 0 : 1;
  }
};

TEST_F(FullDiskDeathTest, FailsTheDownload) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  int code = -1;
  const auto succeedsOrHasNoDisk = [&code](int status) {
    code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return code == 0 || code == kNoDiskOfItsOwn;
  };
  EXPECT_EXIT(std::_Exit(downloadOntoSmallDisk()), succeedsOrHasNoDisk, "");
  if (code == kNoDiskOfItsOwn) GTEST_SKIP() << "no disk of its own";
}

}  // namespace
}  // namespace tessum
