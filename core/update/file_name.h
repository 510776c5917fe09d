// The name under which a downloaded file is stored.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessum {

// The name that an answer suggests for its body: the one in its Content-Disposition header, where
// the extended parameter filename* goes before filename; without one, the last segment of the path
// of `url`, percent-decoded. `url` is the address that answered and `contentDisposition` the
// header's value, absent when there was none.
//
// Servers are not trusted with our folders: whatever they send, the result is one visible, plain
// name, valid UTF-8 and short enough for a file system. Any other suggestion becomes "Tessum.dmg".
// Any thread.
[[nodiscard]] std::string suggestedFileName(std::string_view url,
                                            const std::optional<std::string>& contentDisposition);

}  // namespace tessum
