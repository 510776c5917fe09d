// A checker that downloads a release.

#pragma once

#include <string>
#include <vector>

#include "tests/support/folder_contents.h"
#include "tests/update/update_checker_fixture.h"

namespace tessum {

constexpr auto kImagePath = "/releases/macos/v1.4.0/assets/Setup-1.4.0.dmg";

inline ReleaseInfo releaseOf(const std::vector<std::string>& assetNames) {
  ReleaseInfo made = release("v1.4.0");
  made.assets.emplace();
  for (const auto& name : assetNames) {
    made.assets->push_back({.name = name, .size = 1, .contentType = ""});
  }
  return made;
}

inline const ReleaseInfo kRelease = releaseOf({"Setup-1.4.0.dmg"});

class UpdateDownloadTest : public UpdateCheckerTest {
 protected:
  // Downloads `wanted` from `primary`, then `fallback`, to the end.
  void download(const std::string& primary, const std::string& fallback,
                const ReleaseInfo& wanted = kRelease) {
    makeChecker(primary, fallback);
    checker_->downloadAndInstall(wanted);
    ASSERT_TRUE(waitForDownload());
  }

  // Whether a download from `base` ends in this failure, and with an empty updates folder.
  [[nodiscard]] bool failsAndLeavesNothing(const std::string& base, const std::string& reason) {
    makeChecker(base, base);
    checker_->downloadAndInstall(kRelease);
    return waitForDownload() && states_.back() == failure(reason) && storedNames().empty() &&
           opener_.urls().empty();
  }

  [[nodiscard]] static UpdateState failure(const std::string& reason) {
    return update_state::Error{"Download failed: " + reason};
  }

  [[nodiscard]] std::string stored(const std::string& name) const {
    return updatesFolder() + "/" + name;
  }

  // The names of all that lies in the updates folder.
  [[nodiscard]] std::vector<std::string> storedNames() const { return namesIn(updatesFolder()); }
};

}  // namespace tessum
