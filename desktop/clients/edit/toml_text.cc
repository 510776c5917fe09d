#include "desktop/clients/edit/toml_text.h"

#include <toml++/toml.h>

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "core/base/text.h"
#include "desktop/clients/edit/json_layout.h"
#include "desktop/clients/edit/json_style.h"
#include "desktop/clients/edit/toml_layout.h"

namespace tessum {
namespace {

json::Value valueOf(const toml::node& node) {
  if (const auto* text = node.as_string()) return json::Value(text->get());
  if (const auto* boolean = node.as_boolean()) return json::Value(boolean->get());
  if (const auto* integer = node.as_integer()) return json::Value(std::int64_t{integer->get()});
  if (const auto* array = node.as_array()) {
    json::Value::Array elements;
    for (const toml::node& element : *array) elements.push_back(valueOf(element));
    return elements;
  }
  if (const auto* table = node.as_table()) {
    json::Value::Object members;
    for (const auto& [key, member] : *table) members.emplace(key.str(), valueOf(member));
    return members;
  }
  return {};  // a date or a fraction, which no entry of ours has
}

toml::table parsed(std::string_view text) {
  if (validUtf8(text) != text) throw CannotEdit("it is not UTF-8");
  try {
    return toml::parse(text);
  } catch (const toml::parse_error& error) {
    throw CannotEdit("line " + std::to_string(error.source().begin.line) + ": it is not TOML");
  }
}

// The table of servers; null when there is none. Throws CannotEdit for one that has no header to
// which tables can be added.
toml::table* serversOf(toml::table& root, const std::string& container) {
  toml::node* node = root.get(container);
  if (node == nullptr) return nullptr;
  const std::string where = "line " + std::to_string(node->source().begin.line) + ": ";
  toml::table* table = node->as_table();
  if (table == nullptr) throw CannotEdit(where + "\"" + container + "\" is not a table");
  if (table->is_inline()) throw CannotEdit(where + "\"" + container + "\" is an inline table");
  return table;
}

// All values of a text but those of the entry, in a form that can be compared.
std::string valuesBesides(std::string_view text, const std::string& container,
                          const std::string& key) {
  toml::table root = parsed(text);
  if (toml::table* servers = serversOf(root, container)) {
    servers->erase(key);
    if (servers->empty()) root.erase(container);
  }
  std::ostringstream out;
  out << toml::toml_formatter(root);
  return out.str();
}

// From the beginning of the statement's line to that of the next line.
TextRange linesOf(std::string_view text, const TomlStatement& statement) {
  const auto before =
      statement.begin == 0 ? std::string_view::npos : text.rfind('\n', statement.begin - 1);
  const auto after = text.find('\n', statement.end);
  return {before == std::string_view::npos ? startOfText(text) : before + 1,
          after == std::string_view::npos ? text.size() : after + 1};
}

}  // namespace

std::string TomlText::table(const json::Value& entry, const std::string& lineBreak) const {
  JsonStyle style;
  style.hasLines = false;
  std::string out = "[" + container_ + "." + key_ + "]" + lineBreak;
  for (const auto& [key, value] : *entry.object()) {
    out.append(key).append(" = ").append(style.written(value)).append(lineBreak);
  }
  return out;
}

std::optional<json::Value> TomlText::entry(std::string_view text) const {
  toml::table root = parsed(text);
  const toml::table* servers = serversOf(root, container_);
  const toml::node* node = servers == nullptr ? nullptr : servers->get(key_);
  return node == nullptr ? std::nullopt : std::optional(valueOf(*node));
}

EditedText TomlText::replaced(std::string_view text, const json::Value& entry,
                              const Addition& made) const {
  const std::string lineBreak = lineBreakOf(text);
  EditedText edited{.text = std::string(text), .isReplaced = true};
  const auto place = made.text.empty() ? std::string_view::npos : text.rfind(made.text);
  if (place != std::string_view::npos) {
    edited.addition.text = made.text.substr(0, made.text.find('[')) + table(entry, lineBreak);
    edited.text.replace(place, made.text.size(), edited.addition.text);
    return edited;
  }
  // The new table takes the place of the old one's header, or else is the last one.
  std::size_t at = std::string_view::npos;
  for (const TomlStatement& statement : tomlStatements(text)) {
    const bool isTable = statement.path == std::vector<std::string>{container_, key_};
    if (statement.isHeader && isTable) at = linesOf(text, statement).begin;
  }
  edited.text = withoutStatements(text);
  if (at == std::string_view::npos) {
    if (!edited.text.empty() && !edited.text.ends_with('\n')) edited.text += lineBreak;
    at = edited.text.size();
  }
  edited.text.insert(std::min(at, edited.text.size()), table(entry, lineBreak));
  return edited;
}

EditedText TomlText::withEntry(std::string_view text, const json::Value& entry,
                               const Addition& made) const {
  const std::string lineBreak = lineBreakOf(text);
  EditedText edited;
  if (this->entry(text)) {
    edited = replaced(text, entry, made);
  } else {
    const bool isBare = text.size() == startOfText(text);
    const bool isLineOpen = !isBare && !text.ends_with('\n');
    edited.addition.text =
        (isLineOpen ? lineBreak : "") + (isBare ? "" : lineBreak) + table(entry, lineBreak);
    edited.text = std::string(text) + edited.addition.text;
  }
  const bool isRight =
      this->entry(edited.text) == entry &&
      valuesBesides(edited.text, container_, key_) == valuesBesides(text, container_, key_);
  if (!isRight) throw CannotEdit("it is written in an unusual way");
  return edited;
}

std::string TomlText::withoutStatements(std::string_view text) const {
  const std::vector<std::string> path{container_, key_};
  auto statements = tomlStatements(text);
  std::string edited(text);
  for (auto statement = statements.rbegin(); statement != statements.rend(); ++statement) {
    if (!isBelow(statement->path, path)) continue;
    TextRange lines = linesOf(edited, *statement);
    // The blank line that sets the last table off goes with it.
    const bool isLast = lines.end == edited.size();
    const auto before = std::string_view(edited).substr(0, lines.begin);
    if (isLast && before.ends_with("\n\r\n")) lines.begin -= 2;
    if (isLast && before.ends_with("\n\n")) lines.begin -= 1;
    edited.erase(lines.begin, lines.end - lines.begin);
  }
  return edited;
}

std::string TomlText::withoutEntry(std::string_view text, const Addition& made) const {
  const auto isRight = [&](const std::string& edited) {
    try {
      return !entry(edited) &&
             valuesBesides(edited, container_, key_) == valuesBesides(text, container_, key_);
    } catch (const CannotEdit&) {
      return false;
    }
  };
  const auto place = made.text.empty() ? std::string_view::npos : text.rfind(made.text);
  if (place != std::string_view::npos) {
    std::string exact(text);
    exact.erase(place, made.text.size());
    if (isRight(exact)) return exact;
  }
  std::string edited = withoutStatements(text);
  if (!isRight(edited)) throw CannotEdit("it is written in an unusual way");
  return edited;
}

RewrittenText TomlText::rewritten(std::string_view text, const json::Value& entry) const {
  // Comments are lost in any case.
  RewrittenText out{.isLossy = !text.empty()};
  std::string kept;
  try {
    toml::table root = parsed(text);
    toml::node* node = root.get(container_);
    toml::table* servers = node == nullptr ? nullptr : node->as_table();
    if (servers == nullptr) {
      root.erase(container_);
    } else {
      servers->is_inline(false);
      servers->erase(key_);
    }
    std::ostringstream lines;
    lines << toml::toml_formatter(root) << "\n";
    kept = lines.str();
  } catch (const CannotEdit&) {
    // Not TOML, so the text is lost.
  }
  const auto end = kept.find_last_not_of(kWhiteSpace);
  kept.erase(end == std::string::npos ? 0 : end + 1);
  out.text = kept + (kept.empty() ? "" : "\n\n") + table(entry, "\n");
  return out;
}

bool TomlText::isEmpty(std::string_view text) const {
  return text.find_first_not_of(kWhiteSpace) == std::string_view::npos;
}

std::string TomlText::lines(const json::Value& entry) const {
  return table(entry, "\n");
}

}  // namespace tessum
