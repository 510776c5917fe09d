// The dynamic JSON value of the protocol: parameters that came in, results that go out.
//
// It is kept as its JSON text, which was checked when the message was read or made by our own
// writer. So a message of any shape takes no more memory than its text, a result is written as it
// was encoded, and only the few members that a method asks for are ever taken apart.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/json/reader.h"

namespace tessum {

// Not thread-safe.
class AnyCodable {
 public:
  enum class Kind { null, boolean, integer, real, text, array, object };

  // Null.
  AnyCodable();

  // A copy of a value as the reader gave it.
  explicit AnyCodable(json::PaddedView source);

  // The value that our own writer has encoded as `json`.
  [[nodiscard]] static AnyCodable encoded(std::string json);

  // What the value reads as. A number that is integral and fits 64 bits is an integer however it
  // is written; one too large for a double is null.
  [[nodiscard]] Kind kind() const;

  // The value when it is of that kind; absent otherwise.
  [[nodiscard]] std::optional<std::int64_t> integer() const;
  [[nodiscard]] std::optional<std::string> text() const;

  // The member `key`, the last one of that key; absent when there is none and when this is not an
  // object.
  [[nodiscard]] std::optional<AnyCodable> member(std::string_view key) const;

  // The value as compact JSON where it was encoded here, as it was written where it was read.
  [[nodiscard]] std::string_view json() const { return source_.view().text(); }

 private:
  explicit AnyCodable(json::PaddedString source) : source_(std::move(source)) {}

  json::PaddedString source_;
};

}  // namespace tessum
