#include "desktop/usage/category_finder.h"

namespace tessum {

// No text of the history holds a NUL.
std::string windowKey(const Activity& session) {
  std::string key = session.appName;
  for (const auto& text : {std::cref(session.bundleID), std::cref(session.title)}) {
    key += '\0';
    if (text.get()) key += '+' + *text.get();
  }
  return key;
}

const Category* CategoryFinder::categoryOf(const Activity& session) {
  if (rules_.categories.empty()) return nullptr;
  std::string key = windowKey(session);
  const auto known = found_.find(key);
  if (known != found_.end()) return known->second;
  const Category* category = tessum::categoryOf(
      rules_, {.app = session.appName, .identifier = session.bundleID, .title = session.title});
  if (found_.size() == kMostRemembered) found_.clear();
  found_.emplace(std::move(key), category);
  return category;
}

}  // namespace tessum
