// An editor that knew the grammar of JSON twice, once for plain JSON and once with comments, could
// err twice. So comments and trailing commas are blanked out first, which needs only strings to be
// told from the rest. What is left has the same offsets; the core's reader checks it as a whole.
// After that, finding the members of an object is a matter of counting brackets.

#include "desktop/clients/edit/json_layout.h"

#include <algorithm>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/json/reader.h"
#include "desktop/clients/edit/config_text.h"

namespace tessum {
namespace {

bool isOneOf(char character, std::string_view set) {
  return set.find(character) != std::string_view::npos;
}

// The offset behind the string that begins at `quote`; the text's end when it has no end.
std::size_t endOfString(std::string_view text, std::size_t quote) {
  for (std::size_t at = quote + 1; at < text.size(); ++at) {
    if (text[at] == '"') return at + 1;
    if (text[at] == '\\') ++at;
  }
  return text.size();
}

std::size_t endOfComment(std::string_view text, std::size_t begin) {
  if (text[begin + 1] == '/') return std::min(text.find_first_of("\r\n", begin), text.size());
  const auto end = text.find("*/", begin + 2);
  if (end == std::string_view::npos) throw CannotEdit("it has a comment without an end");
  return end + 2;
}

bool beginsComment(std::string_view text, std::size_t at) {
  return text[at] == '/' && at + 1 < text.size() && isOneOf(text[at + 1], "/*");
}

// Keeps the line breaks, so that lines stay lines.
void blank(std::string& text, TextRange range) {
  std::replace_if(
      text.begin() + static_cast<std::ptrdiff_t>(range.begin),
      text.begin() + static_cast<std::ptrdiff_t>(range.end),
      [](char character) { return !isOneOf(character, "\r\n"); }, ' ');
}

// Blanks each comma between a value and the end of its object or array.
std::string withoutTrailingCommas(std::string text) {
  std::size_t last = std::string::npos;  // the last byte that is not white space
  bool lastFollowsValue = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isOneOf(text[at], kWhiteSpace)) continue;
    const bool isAfterComma = last != std::string::npos && text[last] == ',';
    if (isOneOf(text[at], "]}") && isAfterComma && lastFollowsValue) text[last] = ' ';
    lastFollowsValue = last != std::string::npos && !isOneOf(text[last], "[{,:");
    last = at;
    if (text[at] != '"') continue;
    at = endOfString(text, at) - 1;
    last = at;
  }
  return text;
}

}  // namespace

std::size_t startOfText(std::string_view text) {
  return text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
}

std::vector<TextRange> jsonComments(std::string_view text) {
  std::vector<TextRange> comments;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '"') {
      at = endOfString(text, at);
    } else if (beginsComment(text, at)) {
      comments.push_back({at, endOfComment(text, at)});
      at = comments.back().end;
    } else {
      ++at;
    }
  }
  return comments;
}

const JsonMember* JsonObject::find(std::string_view key) const {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const JsonMember& member) { return member.key == key; });
  return found == members.end() ? nullptr : &*found;
}

bool JsonObject::hasTwo(std::string_view key) const {
  return std::count_if(members.begin(), members.end(),
                       [&](const JsonMember& member) { return member.key == key; }) > 1;
}

JsonLayout::JsonLayout(std::string_view text) : text_(text), uncommented_(text) {
  if (validUtf8(text) != text) throw CannotEdit("it is not UTF-8");
  comments_ = jsonComments(text);
  for (const TextRange& comment : comments_) blank(uncommented_, comment);
  plain_ = withoutTrailingCommas(uncommented_);
  try {
    static_cast<void>(json::parse(plain_));
  } catch (const json::DecodingError&) {
    throw CannotEdit("it is not JSON");
  }
}

bool JsonLayout::isObject() const {
  return plain_[plain_.find_first_not_of(kWhiteSpace, startOfText(plain_))] == '{';
}

JsonObject JsonLayout::root() const {
  return objectAt(plain_.find_first_not_of(kWhiteSpace, startOfText(plain_)));
}

std::optional<JsonObject> JsonLayout::objectOf(const JsonMember& member) const {
  if (plain_[member.value.begin] != '{') return std::nullopt;
  return objectAt(member.value.begin);
}

JsonObject JsonLayout::objectAt(std::size_t open) const {
  // The reader has found the text to be JSON, so each of these bytes is there.
  const auto skipWhiteSpace = [&](std::size_t from) {
    const auto at = uncommented_.find_first_not_of(kWhiteSpace, from);
    TESSUM_CHECK(at != std::string::npos, "an object without an end");
    return at;
  };
  const auto endOfValue = [&](std::size_t from) {
    std::size_t depth = 0;
    for (std::size_t at = from; at < uncommented_.size(); ++at) {
      const char character = uncommented_[at];
      if (character == '"') {
        at = endOfString(uncommented_, at) - 1;
      } else if (isOneOf(character, "{[")) {
        ++depth;
      } else if (isOneOf(character, "}]") && depth > 0) {
        --depth;
      } else if (depth == 0 && isOneOf(character, ",}] \t\r\n")) {
        return at;
      } else {
        continue;
      }
      if (depth == 0) return at + 1;
    }
    return uncommented_.size();
  };

  JsonObject object{.open = open};
  std::size_t at = skipWhiteSpace(open + 1);
  while (uncommented_[at] != '}') {
    JsonMember member;
    const std::size_t endOfKey = endOfString(uncommented_, at);
    const json::Value key = json::parse(std::string_view(uncommented_).substr(at, endOfKey - at));
    member.key = *key.text();
    member.whole.begin = at;
    member.value.begin = skipWhiteSpace(skipWhiteSpace(endOfKey) + 1);
    member.value.end = endOfValue(member.value.begin);
    member.whole.end = member.value.end;
    at = skipWhiteSpace(member.value.end);
    if (uncommented_[at] == ',') {
      member.comma = at;
      at = skipWhiteSpace(at + 1);
    }
    object.members.push_back(std::move(member));
  }
  object.close = at;
  return object;
}

std::size_t JsonLayout::endOfCommentsBehind(std::size_t from) const {
  std::size_t end = from;
  for (const TextRange& comment : comments_) {
    if (comment.begin < end) continue;
    const auto before = text_.substr(end, comment.begin - end);
    const auto inside = text_.substr(comment.begin, comment.end - comment.begin);
    if (before.find_first_not_of(" \t") != std::string_view::npos) break;
    if (inside.find_first_of("\r\n") != std::string_view::npos) break;
    end = comment.end;
  }
  return end;
}

bool JsonLayout::hasComment(TextRange range) const {
  return std::any_of(comments_.begin(), comments_.end(), [&](const TextRange& comment) {
    return comment.begin >= range.begin && comment.end <= range.end;
  });
}

bool JsonLayout::endsLineComment(std::size_t end) const {
  return std::any_of(comments_.begin(), comments_.end(), [&](const TextRange& comment) {
    return comment.end == end && text_[comment.begin + 1] == '/';
  });
}

}  // namespace tessum
