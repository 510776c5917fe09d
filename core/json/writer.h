// Values as JSON text. Both forms put a backslash before each slash inside a string, write
// non-ASCII characters as UTF-8 and need texts that are valid UTF-8.

#pragma once

#include <string>
#include <string_view>

#include "core/json/value.h"

namespace tessum::json {

// One line without white space.
[[nodiscard]] std::string compact(const Value& value);
void appendCompact(std::string& out, const Value& value);

// One member or element a line, indented by two blanks a level; members in the order of their
// keys' code points; no line feed at the end.
[[nodiscard]] std::string pretty(const Value& value);

// Appends `text` as a JSON string.
void appendString(std::string& out, std::string_view text);

// Writes one object as compact text, its members in the order of the calls. Unlike a Value it needs
// no memory of its own, which suits large texts and the objects of each message.
// Not thread-safe.
class ObjectWriter {
 public:
  // Appends to `out`, which must outlive the writer.
  explicit ObjectWriter(std::string& out) : out_(out) { out_ += '{'; }
  ObjectWriter(const ObjectWriter&) = delete;
  ObjectWriter& operator=(const ObjectWriter&) = delete;

  void text(std::string_view key, std::string_view value);
  void boolean(std::string_view key, bool value);

  // Begins a member, whose value the caller appends to the returned text.
  [[nodiscard]] std::string& member(std::string_view key);

  // Call it once, after the last member.
  void end() { out_ += '}'; }

 private:
  std::string& out_;
};

}  // namespace tessum::json
