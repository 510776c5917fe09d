// The dynamic JSON value of the protocol: parameters that came in, results that go out.
//
// It is kept as its JSON text, which was checked when the message was read or made by our own
// writer. So a message of any shape takes no more memory than its text, a result is written as it
// was encoded, and a method takes the few members it knows out of its parameters in one pass.

#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "core/json/padded.h"
#include "core/json/reader.h"

namespace tessum {

// Not thread-safe.
class AnyCodable {
 public:
  // Null.
  AnyCodable();

  // A copy of a value as the reader gave it.
  explicit AnyCodable(json::PaddedView source);

  // The value that our own writer has encoded as `json`.
  [[nodiscard]] static AnyCodable encoded(std::string json);

  // Visits the members of an object, duplicates included; a value of another kind has none.
  void forEachMember(const json::VisitMember& visit) const;

  // The value as compact JSON where it was encoded here, as it was written where it was read.
  [[nodiscard]] std::string_view json() const { return source_.view().text(); }

 private:
  explicit AnyCodable(json::PaddedString source) : source_(std::move(source)) {}

  json::PaddedString source_;
};

}  // namespace tessum
