// The addresses of the release service, composed from a base URL.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// The base URLs that this build was configured with: the primary one, then the fallback. Empty
// where it has no release service.
[[nodiscard]] std::vector<std::string> configuredBaseUrls();

// Whether `text` is an absolute HTTPS URL that a path can be appended to: a host, perhaps a port
// and a path, but no user, query or fragment.
[[nodiscard]] bool isBaseUrl(std::string_view text);

// Where the newest release is described.
[[nodiscard]] std::string latestReleaseUrl(std::string_view base);

// Where the file `name` of the release `tag` lies. Slashes in either stay; characters that a URL's
// path may not hold are percent-encoded.
[[nodiscard]] std::string assetUrl(std::string_view base, std::string_view tag,
                                   std::string_view name);

// The file URL of an absolute path.
[[nodiscard]] std::string fileUrl(std::string_view path);

// The path of a URL that fileUrl() made.
[[nodiscard]] std::string filePath(std::string_view url);

// `text` with each "%" and two hexadecimal digits replaced by that byte; any other "%" stays.
[[nodiscard]] std::string percentDecoded(std::string_view text);

}  // namespace tessum
