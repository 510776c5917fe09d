// The colours of applications and categories.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessum {

// How many colours the page has. Each is a variable of its style, --c0 and so on, with a value for
// light and one for dark. They differ in lightness too, for eyes that do not tell red from green.
inline constexpr std::size_t kColours = 16;

// The index of the colour that belongs to `name`: always the same, whatever else is shown.
[[nodiscard]] std::size_t colourOf(std::string_view name);

// The style of that colour, such as c3.
[[nodiscard]] std::string colourStyle(std::string_view name);

}  // namespace tessum
