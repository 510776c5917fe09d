// The difference between two texts, for a person and for "patch".

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessum {

// The lines that differ, with those around them, in the form of "diff -u". What lies between the
// first and the last line that differ is shown as a whole. An absent text is a missing file. Empty
// when the texts are equal.
[[nodiscard]] std::string textDifference(const std::string& path,
                                         const std::optional<std::string>& before,
                                         const std::optional<std::string>& after);

}  // namespace tessum
