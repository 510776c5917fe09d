// Reads a record's members from a Value, with errors that say where: "expected text at
// assets[1].name".

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/json/value.h"

namespace tessum::json {

// A value in a document and the path to it. It refers to the document, which must outlive it.
// Every call throws DecodingError when the value is not of the kind that the call needs.
class Field {
 public:
  // The document itself; its path is empty.
  explicit Field(const Value& document) : Field(document, "") {}

  // The member `key` of this object. required() throws when it is missing; optional() gives
  // nothing when it is missing or null.
  [[nodiscard]] Field required(std::string_view key) const;
  [[nodiscard]] std::optional<Field> optional(std::string_view key) const;

  [[nodiscard]] std::vector<Field> elements() const;
  [[nodiscard]] std::string text() const;
  [[nodiscard]] bool boolean() const;
  [[nodiscard]] std::int64_t integer() const;
  [[nodiscard]] double real() const;

  // Throws the DecodingError "expected `what` at <path>".
  [[noreturn]] void fail(std::string_view what) const;

 private:
  Field(const Value& value, std::string path) : value_(&value), path_(std::move(path)) {}

  const Value* value_;
  std::string path_;
};

}  // namespace tessum::json
