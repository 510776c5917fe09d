// Reads JSON text. Every value is checked, even those that nobody asks for, so a text is either
// valid as a whole or refused: UTF-8, no lone surrogates, at most 512 nested levels, one top-level
// value of any kind. A leading byte-order mark is accepted. Any thread.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/base/described_error.h"
#include "core/json/padded.h"
#include "core/json/value.h"

namespace tessum::json {

// A text that is not JSON, or not the JSON that was expected.
class DecodingError : public DescribedError {
 public:
  using DescribedError::DescribedError;
};

// The whole text as a value. Throws DecodingError.
[[nodiscard]] Value parse(PaddedView text);
[[nodiscard]] Value parse(std::string_view text);

// One member of an object. `key` and `text` live as long as the visit, `source` as long as the text
// of the object.
struct Member {
  std::string_view key;
  PaddedView source;                     // the value as it is written
  std::optional<std::string_view> text;  // the value without escapes; absent unless it is a string
};

using VisitMember = std::function<void(const Member&)>;

// Visits the members of the object `text` in their order, duplicates included. Throws
// DecodingError: also when the text is JSON but not an object, and possibly after some members
// have been visited.
void forEachMember(PaddedView text, const VisitMember& visit);

}  // namespace tessum::json
