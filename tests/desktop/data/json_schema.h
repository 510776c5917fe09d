// The part of JSON Schema that docs/data.schema.json uses.

#pragma once

#include <string>

#include "core/json/value.h"

namespace tessum {

// What of `value` is not as `schema` says, a line each; empty where all is. Fails the test at a
// word of the schema that it does not know.
[[nodiscard]] std::string violations(const json::Value& schema, const json::Value& value);

}  // namespace tessum
