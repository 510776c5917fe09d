#include "tests/desktop/data/json_schema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <regex>

#include "core/json/number.h"
#include "core/json/writer.h"

namespace tessum {
namespace {

using json::Value;

std::string kindOf(const Value& value) {
  if (value.isNull()) return "null";
  if (value.boolean() != nullptr) return "boolean";
  if (value.text() != nullptr) return "string";
  if (value.array() != nullptr) return "array";
  if (value.object() != nullptr) return "object";
  return json::integralValue(value.number()->text) ? "integer" : "number";
}

bool isOfKind(const Value& value, const std::string& kind) {
  return kindOf(value) == kind || (kind == "number" && kindOf(value) == "integer");
}

class Validator {
 public:
  explicit Validator(const Value& root) : root_(root) {}

  [[nodiscard]] std::string check(const Value& schema, const Value& value,
                                  const std::string& place) const {
    std::string text;
    const auto fail = [&](const std::string& what) { text += place + ": " + what + "\n"; };
    for (const auto& [word, wanted] : *schema.object()) {
      if (word == "$ref") {
        text += check(definition(*wanted.text()), value, place);
      } else if (word == "const") {
        if (!(value == wanted)) fail("is not " + json::compact(wanted));
      } else if (word == "enum") {
        if (!holds(*wanted.array(), value)) fail("is none of " + json::compact(wanted));
      } else if (word == "type") {
        if (!isOfAnyKind(value, wanted)) fail("is no " + json::compact(wanted));
      } else if (word == "pattern") {
        const bool fits =
            value.text() == nullptr || std::regex_search(*value.text(), std::regex(*wanted.text()));
        if (!fits) fail("is not like " + *wanted.text());
      } else if (word == "minimum") {
        const bool fits =
            value.number() == nullptr || std::strtod(value.number()->text.c_str(), nullptr) >=
                                             std::strtod(wanted.number()->text.c_str(), nullptr);
        if (!fits) fail("is less than " + wanted.number()->text);
      } else if (word == "items") {
        text += checkItems(wanted, value, place);
      } else if (word == "properties") {
        text += checkMembers(wanted, value, place);
      } else if (word == "required") {
        for (const Value& name : *wanted.array()) {
          if (value.object() != nullptr && !value.object()->contains(*name.text())) {
            fail("has no " + *name.text());
          }
        }
      } else if (word == "additionalProperties") {
        text += checkNames(*schema.object()->at("properties").object(), value, place);
      } else if (word == "oneOf") {
        text += checkOneOf(*wanted.array(), value, place);
      } else if (word != "$schema" && word != "$defs" && word != "title") {
        ADD_FAILURE() << "unknown word of the schema: " << word;
      }
    }
    return text;
  }

 private:
  [[nodiscard]] const Value& definition(const std::string& reference) const {
    const std::string name = reference.substr(std::string("#/$defs/").size());
    return root_.object()->at("$defs").object()->at(name);
  }

  static bool holds(const Value::Array& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
  }

  static bool isOfAnyKind(const Value& value, const Value& kinds) {
    if (kinds.text() != nullptr) return isOfKind(value, *kinds.text());
    return std::any_of(kinds.array()->begin(), kinds.array()->end(),
                       [&](const Value& kind) { return isOfKind(value, *kind.text()); });
  }

  [[nodiscard]] std::string checkItems(const Value& schema, const Value& value,
                                       const std::string& place) const {
    std::string text;
    if (value.array() == nullptr) return text;
    for (std::size_t i = 0; i < value.array()->size(); ++i) {
      text += check(schema, (*value.array())[i], place + "[" + std::to_string(i) + "]");
    }
    return text;
  }

  [[nodiscard]] std::string checkMembers(const Value& schemas, const Value& value,
                                         const std::string& place) const {
    std::string text;
    if (value.object() == nullptr) return text;
    for (const auto& [name, member] : *value.object()) {
      const auto schema = schemas.object()->find(name);
      if (schema != schemas.object()->end()) {
        text += check(schema->second, member, place + "." + name);
      }
    }
    return text;
  }

  static std::string checkNames(const Value::Object& known, const Value& value,
                                const std::string& place) {
    std::string text;
    if (value.object() == nullptr) return text;
    for (const auto& [name, member] : *value.object()) {
      if (!known.contains(name)) text += place + ": has an unknown " + name + "\n";
    }
    return text;
  }

  [[nodiscard]] std::string checkOneOf(const Value::Array& schemas, const Value& value,
                                       const std::string& place) const {
    std::string text;
    int count = 0;
    for (const Value& schema : schemas) {
      const std::string found = check(schema, value, place);
      text += found;
      if (found.empty()) ++count;
    }
    if (count == 1) return "";
    return place + ": fits " + std::to_string(count) + " of the forms\n" + text;
  }

  const Value& root_;
};

}  // namespace

std::string violations(const json::Value& schema, const json::Value& value) {
  return Validator(schema).check(schema, value, "$");
}

}  // namespace tessum
