// Members of the JSON that commands print.

#pragma once

#include <optional>

#include "core/json/value.h"
#include "desktop/data/csv.h"

namespace tessum {

[[nodiscard]] inline json::Value secondsValue(double seconds) {
  return json::Number{secondsText(seconds)};
}

template <typename T>
[[nodiscard]] json::Value orNull(const std::optional<T>& value) {
  return value ? json::Value(*value) : json::Value();
}

}  // namespace tessum
