#include "desktop/usage/usage.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "desktop/periods/calendar_dates.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

bool holds(const std::vector<Grouping>& by, Grouping grouping) {
  return std::find(by.begin(), by.end(), grouping) != by.end();
}

// The texts of sessions that the groups and the filter use.
Texts textsFor(const std::vector<Grouping>& by, const SessionFilter& filter) {
  if (filter.isMeantTitle || filter.category || holds(by, Grouping::title) ||
      holds(by, Grouping::category)) {
    return Texts::all;
  }
  return filter.appName || holds(by, Grouping::app) ? Texts::application : Texts::none;
}

// Visits the sessions of `range` that pass `filter`, with the time that they spend in it. Returns
// whether any does not pass.
template <typename Visit>
bool visit(History& history, const DayRange& range, Date now, const SessionFilter& filter,
           Texts texts, CategoryFinder& categories, const Visit& visit) {
  bool leavesOutSome = false;
  history.visitSessionsIn(
      range, now,
      [&](const Activity& session) {
        if (!passes(filter, session, categories)) {
          leavesOutSome = true;
          return;
        }
        const double start =
            std::max(session.startTime.secondsSince1970, range.start.secondsSince1970);
        const double end =
            std::min(session.endTime.value_or(now).secondsSince1970, range.end.secondsSince1970);
        visit(session, {start}, {end});
      },
      texts);
  return leavesOutSome;
}

void sortBySize(std::vector<UsageGroup>& groups) {
  std::sort(groups.begin(), groups.end(), [](const UsageGroup& a, const UsageGroup& b) {
    if (a.total.seconds != b.total.seconds) return a.total.seconds > b.total.seconds;
    return a.name < b.name;
  });
}

void arrange(std::vector<UsageGroup>& groups, const std::vector<Grouping>& by) {
  if (!isChronological(by[0])) sortBySize(groups);
  if (by.size() < 2 || isChronological(by[1])) return;
  for (UsageGroup& group : groups) sortBySize(group.groups);
}

// Moves the titles of what has no category out of `groups`, where they are parts.
std::vector<UsageGroup> takeUncategorised(std::vector<UsageGroup>& groups) {
  std::vector<UsageGroup> titles;
  for (UsageGroup& group : groups) {
    if (!group.name) titles = std::move(group.groups);
    group.groups.clear();
  }
  sortBySize(titles);
  return titles;
}

// The days of `groups`, which are numbered from `first`, with an empty one for each other day of
// `recorded`.
std::vector<UsageGroup> withAllDays(const std::vector<UsageGroup>& groups,
                                    const CalendarDate& first, const Period& recorded) {
  std::vector<UsageGroup> days;
  const int last = daysBetween(first, recorded.last);
  auto next = groups.begin();
  for (int i = daysBetween(first, recorded.first); i <= last || next != groups.end(); ++i) {
    const bool isThere = next != groups.end() && next->number == i;
    days.push_back(isThere ? *next++ : UsageGroup{i, dateText(daysAfter(first, i)), {}});
  }
  return days;
}

std::optional<Total> totalBefore(History& history, const ReportDays& days, const UsageQuery& query,
                                 CategoryFinder& categories, Date now) {
  const Period before{daysAfter(query.period.first, -dayCount(query.period)),
                      daysAfter(query.period.first, -1)};
  if (!isDate(before.first)) return std::nullopt;
  Total total;
  visit(history, days.rangeOf(before), now, query.filter, textsFor({}, query.filter), categories,
        [&](const Activity&, Date start, Date end) {
          total.seconds += std::max(0.0, secondsBetween(start, end));
          total.sessions += 1;
        });
  return total;
}

}  // namespace

Usage readUsage(History& history, const ReportDays& days, const Rules& rules,
                const UsageQuery& query, Date now) {
  Usage usage{.period = query.period,
              .range = days.rangeOf(query.period),
              .total = {},
              .groups = {},
              .uncategorised = {},
              .days = {},
              .before = {},
              .leavesOutSome = false};
  CategoryFinder categories(rules);
  const auto notes =
      holds(query.by, Grouping::note) ? history.notesIn(usage.range) : std::vector<Annotation>();
  const DimensionSources sources{days, query.period.first, notes, now, categories};
  const bool isByCategory = query.by == std::vector{Grouping::category};
  auto second = isByCategory          ? makeUncategorisedTitleDimension(categories)
                : query.by.size() > 1 ? makeDimension(query.by[1], sources)
                                      : nullptr;
  UsageTally tally(makeDimension(query.by[0], sources), std::move(second));
  UsageTally dayTally(makeDimension(Grouping::day, sources));
  const bool isOneDay = dayCount(query.period) == 1;
  usage.leavesOutSome =
      visit(history, usage.range, now, query.filter, textsFor(query.by, query.filter), categories,
            [&](const Activity& session, Date start, Date end) {
              tally.add(session, start, end);
              if (!isOneDay) dayTally.add(session, start, end);
            });
  usage.total = tally.total();
  usage.groups = tally.groups();
  if (isByCategory) usage.uncategorised = takeUncategorised(usage.groups);
  arrange(usage.groups, query.by);
  if (isOneDay) return usage;
  usage.days = withAllDays(dayTally.groups(), query.period.first,
                           recordedDays(history, query.period, days, now));
  usage.before = totalBefore(history, days, query, categories, now);
  return usage;
}

std::vector<UsageGroup> readUsageOfRules(History& history, const Rules& rules,
                                         const DayRange& range, Date now) {
  CategoryFinder categories(rules);
  UsageTally tally(makeRuleDimension(rules, categories), makeTitleDimension());
  visit(history, range, now, {}, Texts::all, categories,
        [&](const Activity& session, Date start, Date end) { tally.add(session, start, end); });
  auto groups = tally.groups();
  for (UsageGroup& group : groups) sortBySize(group.groups);
  return groups;
}

std::vector<bool> areLargest(const std::vector<UsageGroup>& groups, std::size_t most) {
  if (most == 0 || groups.size() <= most) return std::vector<bool>(groups.size(), true);
  std::vector<std::size_t> order(groups.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return groups[a].total.seconds > groups[b].total.seconds;
  });
  order.resize(most);
  std::vector<bool> are(groups.size());
  for (const std::size_t i : order) are[i] = true;
  return are;
}

}  // namespace tessum
