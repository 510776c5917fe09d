// Reads JSON text. Every value is visited and checked, also those nobody asks for, so a text is
// either wholly valid or refused: UTF-8, no lone surrogates, at most 512 nested levels, one
// top-level value of any kind. A leading byte-order mark is accepted. Any thread.

#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/json/padded.h"
#include "core/json/value.h"

namespace tessum::json {

// A text that is not JSON, or not the JSON that was expected. Its what() is one line for people.
class DecodingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class Kind { null, boolean, number, text, array, object };

// The whole text as a value. Throws DecodingError.
[[nodiscard]] Value parse(PaddedView text);
[[nodiscard]] Value parse(std::string_view text);

// Calls `visit` with the key and the source text of each member of the object that `text` is,
// duplicates included. The key lives for that one call, the value's text as long as `text`.
// Throws DecodingError: also when the text is JSON but not an object, and possibly after some
// members have been visited.
using VisitMember = std::function<void(std::string_view key, PaddedView value)>;
void forEachMember(PaddedView text, const VisitMember& visit);

// The kind of a value, from its source text as forEachMember gives it.
[[nodiscard]] Kind kindOf(PaddedView value);

// The string that the source text `value` of a string stands for. Throws DecodingError.
[[nodiscard]] std::string decodeString(PaddedView value);

// Whether the number `text` is within the range of a double.
[[nodiscard]] bool fitsDouble(std::string_view number);

}  // namespace tessum::json
