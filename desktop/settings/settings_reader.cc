#include "desktop/settings/settings_reader.h"

#include <toml++/toml.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "core/base/text.h"
#include "desktop/settings/suggestion.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

[[noreturn]] void fail(const toml::source_position& where, const std::string& what) {
  throw SettingsError("line " + std::to_string(where.line) + ", column " +
                      std::to_string(where.column) + ": " + what);
}

[[noreturn]] void fail(const toml::node& node, const std::string& what) {
  fail(node.source().begin, what);
}

int lineOf(const toml::node& node) {
  return static_cast<int>(node.source().begin.line);
}

// A key that a table may have, and its handler.
struct Key {
  std::string_view name;
  std::function<void(const toml::node&)> read;
};

// The key that `wanted` resembles, or else all that there are.
std::string adviceFor(std::string_view wanted, const std::vector<Key>& keys) {
  std::vector<std::string_view> known;
  std::string list;
  for (const Key& key : keys) {
    known.push_back(key.name);
    list += (list.empty() ? "" : ", ") + std::string(key.name);
  }
  const std::string meant = suggestion(wanted, known);
  return meant.empty() ? "; the keys here are " + list : meant;
}

void readTable(const toml::table& table, const std::vector<Key>& keys) {
  for (const auto& [name, node] : table) {
    const std::string_view wanted = name.str();
    const auto found =
        std::find_if(keys.begin(), keys.end(), [&](const Key& key) { return key.name == wanted; });
    if (found != keys.end()) {
      found->read(node);
      continue;
    }
    fail(name.source().begin, "unknown key " + inQuotes(wanted) + adviceFor(wanted, keys));
  }
}

const toml::table& tableOf(const toml::node& node, const std::string& form) {
  const toml::table* table = node.as_table();
  if (table == nullptr) fail(node, "a table is expected; write it as " + form);
  return *table;
}

void readEach(const toml::node& node, const std::string& form,
              const std::function<void(const toml::table&)>& read) {
  const toml::array* array = node.as_array();
  if (array == nullptr) fail(node, "tables are expected; write each as " + form);
  for (const toml::node& element : *array) read(tableOf(element, form));
}

const std::string& textOf(const toml::node& node) {
  const auto* text = node.as_string();
  if (text == nullptr) fail(node, "a text in quotation marks is expected");
  return text->get();
}

Pattern patternOf(const toml::node& node) {
  const std::string& text = textOf(node);
  if (text.empty()) fail(node, "an empty pattern would match everything");
  try {
    return Pattern(text);
  } catch (const std::invalid_argument& error) {
    fail(node, "not a regular expression: " + printable(validUtf8(error.what())));
  }
}

Hours hoursOf(const toml::node& node) {
  const auto hours = parseHours(textOf(node));
  if (!hours) fail(node, "unknown hours " + inQuotes(textOf(node)) + "; write them as 18:00-08:00");
  return *hours;
}

Weekdays daysOf(const toml::node& node) {
  const toml::array* names = node.as_array();
  if (names == nullptr || names->empty()) {
    fail(node, "days are expected; write them as [\"sat\", \"sun\"]");
  }
  Weekdays days;
  for (const toml::node& name : *names) {
    const auto day = parseWeekday(textOf(name));
    if (!day) {
      fail(name, "unknown day " + inQuotes(textOf(name)) +
                     "; the days are mon, tue, wed, thu, fri, sat and sun");
    }
    days.set(*day);
  }
  return days;
}

Kept keptOf(const toml::node& node) {
  const std::string& text = textOf(node);
  if (text != "app") fail(node, "only \"app\" can be kept, not " + inQuotes(text));
  return Kept::app;
}

std::string chosenColour(const toml::node& node) {
  const auto colour = parseColour(textOf(node));
  if (!colour) fail(node, "unknown colour " + inQuotes(textOf(node)) + "; write it as #3a7bd5");
  return *colour;
}

HideRule readHideRule(const toml::table& table) {
  HideRule rule;
  rule.line = lineOf(table);
  std::optional<Hours> hours;
  std::optional<Weekdays> days;
  readTable(table, {{"app", [&](const auto& node) { rule.windows.app = patternOf(node); }},
                    {"title", [&](const auto& node) { rule.windows.title = patternOf(node); }},
                    {"between", [&](const auto& node) { hours = hoursOf(node); }},
                    {"days", [&](const auto& node) { days = daysOf(node); }},
                    {"keep", [&](const auto& node) { rule.kept = keptOf(node); }}});
  if (hours || days) rule.schedule = {hours.value_or(Hours()), days.value_or(kEveryDay)};
  if (!rule.windows.app && !rule.windows.title && !rule.schedule) {
    fail(table, "it does not say what to hide: give app, title, between or days");
  }
  return rule;
}

Category readCategory(const toml::table& table) {
  Category category;
  category.line = lineOf(table);
  readTable(table, {{"name", [&](const auto& node) { category.name = textOf(node); }},
                    {"app", [&](const auto& node) { category.windows.app = patternOf(node); }},
                    {"title", [&](const auto& node) { category.windows.title = patternOf(node); }},
                    {"color", [&](const auto& node) { category.colour = chosenColour(node); }}});
  if (trimWhiteSpace(category.name).empty()) fail(table, "it has no name");
  if (!category.windows.app && !category.windows.title) {
    fail(table, "it does not say what belongs to it: give app or title");
  }
  return category;
}

void readRecord(const toml::table& table, Settings& settings) {
  readTable(table, {{"away-after",
                     [&](const toml::node& node) {
                       const auto value = parseAwayAfter(textOf(node));
                       if (!value) {
                         fail(node, "unknown duration " + inQuotes(textOf(node)) +
                                        "; write it as 30s, 5m or 1h30m, up to 24h, or never");
                       }
                       settings.awayAfter = {*value, lineOf(node)};
                     }},
                    {"titles", [&](const toml::node& node) {
                       const std::string& text = textOf(node);
                       const auto value = parseTitles(text);
                       if (!value) {
                         const std::string meant = suggestion(text, {"each", "last", "none"});
                         fail(node, "unknown value " + inQuotes(text) + " of titles" +
                                        (meant.empty() ? "; write each, last or none" : meant));
                       }
                       settings.titles = {*value, lineOf(node)};
                     }}});
}

void readReports(const toml::table& table, Settings& settings) {
  readTable(table, {{"day-starts", [&](const toml::node& node) {
                       const auto value = parseDayStarts(textOf(node));
                       if (!value) {
                         fail(node, "unknown time " + inQuotes(textOf(node)) +
                                        "; write it as 04:00, from 00:00 to 23:59");
                       }
                       settings.dayStarts = {*value, lineOf(node)};
                     }}});
}

}  // namespace

Settings readSettings(std::string_view text) {
  Settings settings;
  try {
    readTable(
        toml::parse(text),
        {{"record", [&](const auto& node) { readRecord(tableOf(node, "[record]"), settings); }},
         {"reports", [&](const auto& node) { readReports(tableOf(node, "[reports]"), settings); }},
         {"hide",
          [&](const auto& node) {
            readEach(node, "[[hide]]", [&](const toml::table& table) {
              settings.rules.hide.push_back(readHideRule(table));
            });
          }},
         {"category", [&](const auto& node) {
            readEach(node, "[[category]]", [&](const toml::table& table) {
              settings.rules.categories.push_back(readCategory(table));
            });
          }}});
  } catch (const toml::parse_error& error) {
    fail(error.source().begin, printable(validUtf8(error.description())));
  }
  return settings;
}

}  // namespace tessum
