#include "desktop/command_line/filter_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "core/base/text.h"
#include "desktop/command_line/text_search.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

void requireCategory(const std::string& name, const Rules& rules) {
  const auto hasName = [&](const Category& category) { return category.name == name; };
  if (name == kUncategorised) return;
  if (std::any_of(rules.categories.begin(), rules.categories.end(), hasName)) return;
  std::string known;
  for (const Category& category : rules.categories) known += category.name + ", ";
  throw CLI::ValidationError("unknown category \"" + name + "\"; there are " + known +
                             std::string(kUncategorised));
}

}  // namespace

void addFilterOptions(CLI::App& command, FilterOptions& options) {
  auto* app = command.add_option("--app", options.appName, "only sessions of this application");
  app->type_name("NAME");
  auto* title =
      command.add_option("--title", options.titlePart,
                         "only sessions with this in the title, in capital or small letters");
  title->type_name("TEXT");
  auto* category =
      command.add_option("--category", options.category, "only sessions of this category");
  category->type_name("NAME");
  // The assistants' tools have no such filters.
  if (command.get_option_no_throw("--plain") == nullptr) return;
  for (auto* filter : {app, title, category}) filter->excludes("--plain");
}

std::string narrowingText(const FilterOptions& options) {
  const auto& [app, title, category] = options;
  std::string text;
  if (!app.empty()) text += " of " + printable(validUtf8(app));
  if (!category.empty()) text += " of the category " + printable(category);
  if (!title.empty()) text += " with \"" + printable(validUtf8(title)) + "\" in the title";
  return text.empty() ? text : text.substr(1);
}

SessionFilter filterOf(const FilterOptions& options, const Rules& rules) {
  SessionFilter filter;
  if (!options.appName.empty()) filter.appName = validUtf8(options.appName);
  if (!options.titlePart.empty()) filter.isMeantTitle = holding(validUtf8(options.titlePart));
  if (!options.category.empty()) {
    requireCategory(options.category, rules);
    filter.category = options.category;
  }
  return filter;
}

SessionTest sessionTestOf(const FilterOptions& options, const Rules& rules) {
  const SessionFilter filter = filterOf(options, rules);
  if (filter.isEmpty()) return {};
  const auto categories = std::make_shared<CategoryFinder>(rules);
  return [filter, categories](const Activity& session) {
    return passes(filter, session, *categories);
  };
}

}  // namespace tessum
