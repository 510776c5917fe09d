#include "desktop/clients/edit/json_text.h"

#include <algorithm>
#include <utility>

#include "core/json/reader.h"
#include "core/json/writer.h"
#include "desktop/clients/edit/json_layout.h"
#include "desktop/clients/edit/json_style.h"

namespace tessum {
namespace {

using Object = json::Value::Object;

// Whether there is nothing but white space and comments.
bool hasNoValue(std::string_view text) {
  std::size_t at = startOfText(text);
  for (const TextRange& comment : jsonComments(text)) {
    if (text.substr(at, comment.begin - at).find_first_not_of(kWhiteSpace) !=
        std::string_view::npos) {
      return false;
    }
    at = comment.end;
  }
  return text.find_first_not_of(kWhiteSpace, at) == std::string_view::npos;
}

std::string lineOf(std::string_view text, std::size_t at) {
  const auto before = text.substr(0, at);
  return "line " + std::to_string(1 + std::count(before.begin(), before.end(), '\n'));
}

void requireOne(std::string_view text, const JsonObject& object, std::string_view key) {
  if (!object.hasTwo(key)) return;
  throw CannotEdit(lineOf(text, object.open) + ": the object has two members \"" +
                   std::string(key) + "\"");
}

const json::Value* memberOf(const Object& object, std::string_view key) {
  const auto member = object.find(key);
  return member == object.end() ? nullptr : &member->second;
}

std::string withoutRange(std::string_view text, TextRange range) {
  return std::string(text.substr(0, range.begin)) + std::string(text.substr(range.end));
}

std::string withInsertion(std::string text, std::size_t at, std::string_view added) {
  return text.insert(at, added);
}

// Adds a member to an object of `text` behind those that it has.
EditedText withMember(std::string_view text, const JsonLayout& layout, const JsonObject& object,
                      std::string_view key, const json::Value& value) {
  const JsonStyle style = styleOf(text, layout.root(), object);
  const std::string lead = style.hasLines ? style.lineBreak + style.indentation : "";
  Addition addition{.text = lead + style.member(key, value)};
  if (object.members.empty()) {
    std::size_t at = object.open + 1;
    if (style.hasLines) at = layout.endOfCommentsBehind(at);
    const bool isLineLeft = text.substr(at, object.close - at).find('\n') != std::string_view::npos;
    if (style.hasLines && !isLineLeft) {
      addition.text += style.lineBreak + indentationAt(text, object.open);
    }
    std::string edited = withInsertion(std::string(text), at, addition.text);
    return {std::move(edited), std::move(addition)};
  }
  const JsonMember& last = object.members.back();
  const std::size_t end = last.comma ? *last.comma + 1 : last.whole.end;
  const std::size_t at = style.hasLines ? layout.endOfCommentsBehind(end) : end;
  if (!style.hasLines) addition.text.insert(0, " ");
  if (last.comma) addition.text += ",";
  std::string edited = withInsertion(std::string(text), at, addition.text);
  if (!last.comma) {
    edited.insert(end, ",");
    addition.hasComma = true;
  }
  return {std::move(edited), std::move(addition)};
}

// Adds a whole document to a text without one.
EditedText withDocument(std::string_view text, const json::Value& document) {
  JsonStyle style;
  style.lineBreak = lineBreakOf(text);
  const bool isLineOpen = text.size() > startOfText(text) && !text.ends_with('\n');
  Addition addition{
      .text = (isLineOpen ? style.lineBreak : "") + style.written(document) + style.lineBreak,
      .hasContainer = true};
  return {std::string(text) + addition.text, addition};
}

// The member's range with the white space before it and the comma behind it.
TextRange rangeToRemove(std::string_view text, const JsonLayout& layout, const JsonMember& member) {
  const std::size_t end = member.comma ? *member.comma + 1 : member.whole.end;
  const std::size_t begin = text.find_last_not_of(kWhiteSpace, member.whole.begin - 1) + 1;
  const auto next = text.find_first_not_of(" \t", end);
  const bool isLineLeft =
      next != std::string_view::npos && text[next] != '\n' && text[next] != '\r';
  // What follows on the line must not become part of a comment.
  if (isLineLeft && layout.endsLineComment(begin)) return {member.whole.begin, end};
  return {begin, end};
}

std::string withoutMemberOf(std::string_view text, const JsonLayout& layout,
                            const JsonObject& object, std::string_view key) {
  const auto member =
      std::find_if(object.members.begin(), object.members.end(),
                   [&](const JsonMember& candidate) { return candidate.key == key; });
  const bool isOnly = object.members.size() == 1;
  if (isOnly && !layout.hasComment({object.open, object.close})) {
    return withoutRange(text, {object.open + 1, object.close});
  }
  std::string edited = withoutRange(text, rangeToRemove(text, layout, *member));
  const bool isLast = std::next(member) == object.members.end();
  if (isLast && !isOnly && !member->comma) edited.erase(*std::prev(member)->comma, 1);
  return edited;
}

}  // namespace

// A text with the objects that matter.
struct JsonText::Parsed {
  // Throws CannotEdit for a text that cannot be edited.
  Parsed(std::string_view source, std::string_view container, std::string_view key)
      : text(source), layout(source) {
    if (!layout.isObject()) throw CannotEdit("it is not a JSON object");
    root = layout.root();
    requireOne(text, root, container);
    value = *json::parse(layout.plain()).object();
    const JsonMember* member = root.find(container);
    if (member == nullptr) return;
    servers = layout.objectOf(*member);
    if (!servers) {
      throw CannotEdit(lineOf(text, member->whole.begin) + ": \"" + std::string(container) +
                       "\" is not an object");
    }
    requireOne(text, *servers, key);
  }

  std::string_view text;
  JsonLayout layout;
  JsonObject root;
  std::optional<JsonObject> servers;
  Object value;
};

std::optional<json::Value> JsonText::entry(std::string_view text) const {
  if (hasNoValue(text)) return std::nullopt;
  const Parsed parsed(text, container_, key_);
  const json::Value* servers = memberOf(parsed.value, container_);
  const json::Value* entry = servers == nullptr ? nullptr : memberOf(*servers->object(), key_);
  return entry == nullptr ? std::nullopt : std::optional(*entry);
}

EditedText JsonText::withValue(const Parsed& before, const json::Value& entry,
                               const Addition& made) const {
  const JsonMember& old = *before.servers->find(key_);
  JsonStyle style = styleOf(before.text, before.root, *before.servers);
  style.indentation = indentationAt(before.text, old.whole.begin);
  const std::string value = style.written(entry);
  EditedText edited{
      .text = withInsertion(withoutRange(before.text, old.value), old.value.begin, value),
      .addition = made,
      .isReplaced = true};
  edited.addition.text.clear();
  if (const auto place = placeOf(before, made)) {
    const std::size_t size = made.text.size() - (old.value.end - old.value.begin) + value.size();
    edited.addition.text = edited.text.substr(place->begin, size);
  }
  return edited;
}

EditedText JsonText::withEntry(std::string_view text, const json::Value& entry,
                               const Addition& made) const {
  const Object servers{{key_, entry}};
  if (hasNoValue(text)) {
    EditedText edited = withDocument(text, Object{{container_, servers}});
    static_cast<void>(Parsed(edited.text, container_, key_));
    return edited;
  }
  const Parsed before(text, container_, key_);
  EditedText edited;
  Object expected = before.value;
  if (!before.servers) {
    edited = withMember(text, before.layout, before.root, container_, servers);
    edited.addition.hasContainer = true;
    expected[container_] = servers;
  } else {
    Object all = *expected[container_].object();
    all[key_] = entry;
    expected[container_] = std::move(all);
    edited = before.servers->find(key_) == nullptr
                 ? withMember(text, before.layout, *before.servers, key_, entry)
                 : withValue(before, entry, made);
  }
  const Parsed after(edited.text, container_, key_);
  if (after.value != expected || (before.layout.isPlain() && !after.layout.isPlain())) {
    throw CannotEdit("it is written in an unusual way");
  }
  return edited;
}

std::optional<TextRange> JsonText::placeOf(const Parsed& parsed, const Addition& made) const {
  const JsonObject& object = made.hasContainer ? parsed.root : *parsed.servers;
  const JsonMember* member = object.find(made.hasContainer ? container_ : key_);
  // The first quote of what was added is that of its key.
  const auto lead = made.text.find('"');
  if (member == nullptr || lead == std::string::npos || lead > member->whole.begin) {
    return std::nullopt;
  }
  const TextRange place{member->whole.begin - lead, member->whole.begin - lead + made.text.size()};
  if (parsed.text.substr(place.begin, made.text.size()) != made.text) return std::nullopt;
  return place;
}

std::optional<std::string> JsonText::withoutAddition(const Parsed& before,
                                                     const Addition& made) const {
  const auto place = placeOf(before, made);
  if (!place) return std::nullopt;
  std::string edited = withoutRange(before.text, *place);
  if (!made.hasComma) return edited;
  const JsonObject& object = made.hasContainer ? before.root : *before.servers;
  const auto behind =
      std::find_if(object.members.begin(), object.members.end(),
                   [&](const JsonMember& member) { return member.whole.begin > place->begin; });
  if (behind == object.members.begin()) return std::nullopt;
  edited.erase(*std::prev(behind)->comma, 1);
  return edited;
}

std::string JsonText::withoutMember(const Parsed& before, bool hasContainer) const {
  const JsonObject& servers = *before.servers;
  const bool isOnly = servers.members.size() == 1;
  if (hasContainer && isOnly && !before.layout.hasComment({servers.open, servers.close})) {
    return withoutMemberOf(before.text, before.layout, before.root, container_);
  }
  return withoutMemberOf(before.text, before.layout, servers, key_);
}

std::string JsonText::withoutEntry(std::string_view text, const Addition& made) const {
  const Parsed before(text, container_, key_);
  // Whether `edited` differs from `text` by the entry alone, or by a container left empty.
  const auto isRight = [&](const std::string& edited) {
    Object expected = before.value;
    Object servers = *expected[container_].object();
    servers.erase(key_);
    const bool isEmpty = servers.empty();
    expected[container_] = std::move(servers);
    if (hasNoValue(edited)) return isEmpty && expected.size() == 1;
    try {
      const Parsed after(edited, container_, key_);
      if (before.layout.isPlain() && !after.layout.isPlain()) return false;
      if (isEmpty && !after.servers) expected.erase(container_);
      return after.value == expected;
    } catch (const CannotEdit&) {
      return false;
    }
  };
  auto exact = withoutAddition(before, made);
  if (exact && isRight(*exact)) return *std::move(exact);
  std::string edited = withoutMember(before, made.hasContainer);
  if (!isRight(edited)) throw CannotEdit("it is written in an unusual way");
  return edited;
}

RewrittenText JsonText::rewritten(std::string_view text, const json::Value& entry) const {
  RewrittenText out{.isLossy = !text.empty()};
  Object root;
  try {
    const json::Value old = json::parse(text);
    if (const Object* object = old.object()) {
      root = *object;
      out.isLossy = false;
    }
  } catch (const json::DecodingError&) {
    // Not plain JSON, so the text is lost.
  }
  out.hasContainer = !root.contains(container_);
  json::Value& container = root[container_];
  Object servers = container.object() == nullptr ? Object() : *container.object();
  servers.insert_or_assign(key_, entry);
  container = std::move(servers);
  out.text = json::pretty(root);
  return out;
}

bool JsonText::isEmpty(std::string_view text) const {
  if (hasNoValue(text)) return text.find_first_not_of(kWhiteSpace) == std::string_view::npos;
  const JsonLayout layout(text);
  if (!layout.isObject()) return false;
  return json::parse(layout.plain()) == json::Value(Object()) &&
         !layout.hasComment({0, text.size()});
}

std::string JsonText::lines(const json::Value& entry) const {
  return JsonStyle().member(container_, Object{{key_, entry}});
}

}  // namespace tessum
