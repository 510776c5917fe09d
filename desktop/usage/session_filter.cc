#include "desktop/usage/session_filter.h"

namespace tessum {

bool passes(const SessionFilter& filter, const Activity& session, CategoryFinder& categories) {
  if (filter.appName && session.appName != *filter.appName) return false;
  if (filter.isMeantTitle && !(session.title && filter.isMeantTitle(*session.title))) return false;
  if (!filter.category) return true;
  const Category* category = categories.categoryOf(session);
  return *filter.category == (category == nullptr ? kUncategorised : category->name);
}

}  // namespace tessum
