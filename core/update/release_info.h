// What the release service says about a release.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// One downloadable file of a release. It carries no address: see assetUrl().
struct ReleaseAsset {
  std::string name;
  std::int64_t size = 0;  // bytes
  std::string contentType;

  friend bool operator==(const ReleaseAsset&, const ReleaseAsset&) = default;
};

struct ReleaseInfo {
  std::string tag;  // the version, commonly after a "v"
  std::string name;
  std::string body;  // the release notes
  bool prerelease = false;
  std::string publishedAt;  // kept as it was sent
  std::optional<std::vector<ReleaseAsset>> assets;

  friend bool operator==(const ReleaseInfo&, const ReleaseInfo&) = default;
};

// Reads the service's answer: an object whose keys are the member names. Only "assets" may be
// missing or null; keys we do not know are ignored. Throws json::DecodingError, which names the
// member and what was expected there. Any thread.
[[nodiscard]] ReleaseInfo decodeReleaseInfo(std::string_view text);

}  // namespace tessum
