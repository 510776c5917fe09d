#include "desktop/clients/edit/json_style.h"

#include <algorithm>

#include "core/json/writer.h"

namespace tessum {
namespace {

bool hasLineBreak(std::string_view text, std::size_t begin, std::size_t end) {
  return text.substr(begin, end - begin).find('\n') != std::string_view::npos;
}

bool hasMemberLines(std::string_view text, const JsonObject& object) {
  return !object.members.empty() &&
         hasLineBreak(text, object.open, object.members.back().whole.begin);
}

}  // namespace

std::string quoted(std::string_view text) {
  std::string escaped;
  json::appendString(escaped, text);
  std::string out;
  for (std::size_t at = 0; at < escaped.size(); ++at) {
    if (escaped[at] == '\\') {
      const bool isSlash = escaped[at + 1] == '/';
      if (!isSlash) out += escaped[at];
      ++at;
    }
    out += escaped[at];
  }
  return out;
}

std::string lineBreakOf(std::string_view text) {
  const auto end = text.find('\n');
  return end != std::string_view::npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

std::string indentationAt(std::string_view text, std::size_t at) {
  const auto lineBreak = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  const std::size_t begin = lineBreak == std::string_view::npos ? startOfText(text) : lineBreak + 1;
  const auto end = std::min(text.find_first_not_of(" \t", begin), at);
  return std::string(text.substr(begin, end - begin));
}

std::string JsonStyle::written(const json::Value& value) const {
  if (const auto* text = value.text()) return quoted(*text);
  const auto* object = value.object();
  if (object == nullptr || object->empty()) return json::compact(value);
  JsonStyle inner = *this;
  inner.indentation += unit;
  std::string out = "{";
  for (const auto& [key, member] : *object) {
    if (out.size() > 1) out += hasLines ? "," : ", ";
    if (hasLines) out += lineBreak + inner.indentation;
    out += inner.member(key, member);
  }
  if (hasLines) out += lineBreak + indentation;
  return out + "}";
}

std::string JsonStyle::member(std::string_view key, const json::Value& value) const {
  return quoted(key) + ": " + written(value);
}

JsonStyle styleOf(std::string_view text, const JsonObject& root, const JsonObject& object) {
  JsonStyle style;
  style.lineBreak = lineBreakOf(text);
  if (hasMemberLines(text, root)) {
    const std::string ofRoot = indentationAt(text, root.open);
    const std::string ofMembers = indentationAt(text, root.members.front().whole.begin);
    if (ofMembers.size() > ofRoot.size() && ofMembers.starts_with(ofRoot)) {
      style.unit = ofMembers.substr(ofRoot.size());
    }
  }
  if (object.members.empty()) {
    style.hasLines = root.members.empty() || hasMemberLines(text, root);
    style.indentation = indentationAt(text, object.open) + style.unit;
  } else {
    style.hasLines = hasMemberLines(text, object);
    style.indentation = indentationAt(text, object.members.back().whole.begin);
  }
  return style;
}

}  // namespace tessum
