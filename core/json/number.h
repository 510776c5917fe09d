// Numbers in JSON. A number that is not ours keeps its source text, so 1.0, 0.1000, 1e400 and a
// 30-digit integer are written as they were read.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessum::json {

// Whether `text` is one number of JSON's grammar and nothing else.
[[nodiscard]] bool isNumber(std::string_view text);

// The value of the number `text` when it is integral and fits 64 bits, however it is written
// (10, 10.0 and 1e1 are the same); absent otherwise. Exact: no floating point takes part.
[[nodiscard]] std::optional<std::int64_t> integralValue(std::string_view text);

// The shortest text that reads back as `value`, which must be finite.
[[nodiscard]] std::string numberText(double value);

}  // namespace tessum::json
