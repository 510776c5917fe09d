// How a grouping divides the time of sessions.

#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "core/store/records.h"
#include "desktop/periods/report_days.h"
#include "desktop/usage/category_finder.h"
#include "desktop/usage/grouping.h"

namespace tessum {

// A group, and until when a session stays in it.
struct GroupSpan {
  int group = 0;
  Date end;
};

// Not thread-safe.
class Dimension {
 public:
  virtual ~Dimension() = default;

  // The group that `session` is in at the moment `at`, and the end of it, which comes after `at`.
  [[nodiscard]] virtual GroupSpan spanOf(const Activity& session, Date at) = 0;

  // The name of a group; absent for the time without one, such as that without a note.
  [[nodiscard]] virtual std::optional<std::string> nameOf(int group) const = 0;
};

// What dimensions are made from; all of it must outlive them.
struct DimensionSources {
  const ReportDays& days;
  CalendarDate firstDay;              // no session begins before it
  std::span<const Annotation> notes;  // all that overlap the time of the sessions, oldest first
  Date now;                           // at which open notes end
  CategoryFinder& categories;
};

[[nodiscard]] std::unique_ptr<Dimension> makeDimension(Grouping grouping,
                                                       const DimensionSources& sources);

// The rules for categories, each a group of its own, in their order.
[[nodiscard]] std::unique_ptr<Dimension> makeRuleDimension(const Rules& rules,
                                                           CategoryFinder& categories);

[[nodiscard]] std::unique_ptr<Dimension> makeTitleDimension();

// The titles of what belongs to no category; all other time has no name.
[[nodiscard]] std::unique_ptr<Dimension> makeUncategorisedTitleDimension(
    CategoryFinder& categories);

}  // namespace tessum
