// The headers of an HTTP request.

#pragma once

#include <string_view>
#include <vector>

namespace tessum {

// The values of all headers of one name, in order and without blanks around them. `name` is in
// lower case and ends with a colon; in `head`, the request line and the headers, its letters may be
// capital or small. The values refer to `head`. Any thread.
[[nodiscard]] std::vector<std::string_view> headerValues(std::string_view head,
                                                         std::string_view name);

}  // namespace tessum
