// Where the members of an object are in a JSON text that may have comments and trailing commas.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// Half open, as offsets of bytes.
struct TextRange {
  std::size_t begin = 0;
  std::size_t end = 0;
};

struct JsonMember {
  std::string key;       // without escapes
  TextRange whole = {};  // from the key's quote to the value's end
  TextRange value = {};
  std::optional<std::size_t> comma = {};  // behind the value
};

struct JsonObject {
  std::size_t open = 0;  // of its brace
  std::size_t close = 0;
  std::vector<JsonMember> members = {};

  // Null when there is no such member. Of two of the same key, the first.
  [[nodiscard]] const JsonMember* find(std::string_view key) const;
  [[nodiscard]] bool hasTwo(std::string_view key) const;
};

// A text with its comments and trailing commas told apart from the rest, which is plain JSON.
// Immutable. The text must outlive it.
class JsonLayout {
 public:
  // Throws CannotEdit for a text that is not UTF-8, or not JSON but for comments and trailing
  // commas, which a text without any value also is not.
  explicit JsonLayout(std::string_view text);

  // The text with blanks in place of comments and trailing commas: the same offsets, plain JSON.
  [[nodiscard]] const std::string& plain() const { return plain_; }

  // Whether the text is plain JSON itself.
  [[nodiscard]] bool isPlain() const { return plain_ == text_; }

  // Whether the text's value is an object; no other call is for a text whose value is not.
  [[nodiscard]] bool isObject() const;
  [[nodiscard]] JsonObject root() const;

  // The object that is the value of `member`; absent when the value is no object.
  [[nodiscard]] std::optional<JsonObject> objectOf(const JsonMember& member) const;

  // The end of the last comment that begins and ends on the line of `from` with nothing else
  // before it; `from` itself when there is none.
  [[nodiscard]] std::size_t endOfCommentsBehind(std::size_t from) const;

  // Whether a comment lies in the range, or ends where `end` says with the line to follow.
  [[nodiscard]] bool hasComment(TextRange range) const;
  [[nodiscard]] bool endsLineComment(std::size_t end) const;

 private:
  [[nodiscard]] JsonObject objectAt(std::size_t open) const;

  std::string_view text_;
  std::vector<TextRange> comments_;
  std::string uncommented_;  // the text with blanks in place of comments
  std::string plain_;
};

// The text's comments, in their order. Throws CannotEdit when one has no end.
[[nodiscard]] std::vector<TextRange> jsonComments(std::string_view text);

// The offset of the first byte behind a byte-order mark, if there is one.
[[nodiscard]] std::size_t startOfText(std::string_view text);

}  // namespace tessum
