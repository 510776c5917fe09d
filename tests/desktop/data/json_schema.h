// The part of JSON Schema that docs/data.schema.json uses.

#pragma once

#include <string>

#include "core/json/value.h"

namespace tessum {

// Where `value` does not match `schema`, a line each; empty where it matches. Fails the test at a
// keyword of the schema that it does not know.
[[nodiscard]] std::string violations(const json::Value& schema, const json::Value& value);

}  // namespace tessum
