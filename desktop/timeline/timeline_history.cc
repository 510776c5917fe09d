#include "desktop/timeline/timeline_history.h"

#include <map>
#include <tuple>
#include <unordered_map>

#include "desktop/periods/calendar_dates.h"
#include "desktop/usage/category_finder.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

// TextIndex and the order in which they came first.
class TextIndex {
 public:
  explicit TextIndex(std::vector<std::string>& texts) : texts_(texts) {}

  std::size_t indexOf(const std::string& text) {
    const auto [found, isNew] = indices_.emplace(text, texts_.size());
    if (isNew) texts_.push_back(text);
    return found->second;
  }

 private:
  std::vector<std::string>& texts_;
  std::unordered_map<std::string, std::size_t> indices_;
};

class Reader {
 public:
  Reader(TimelineHistory& timeline, const Rules& rules) : timeline_(timeline), finder_(rules) {
    for (const Category& rule : rules.categories) {
      const std::size_t index = categoryNames_.indexOf(rule.name);
      if (index == timeline.categories.size()) timeline.categories.push_back({rule.name, {}});
      TimelineCategory& category = timeline.categories[index];
      if (!category.colour) category.colour = rule.colour;
    }
  }

  void add(const Activity& session) {
    const Activity part = cutTo(timeline_.range(), session, timeline_.now);
    timeline_.sessions.push_back({.start = part.startTime,
                                  .end = part.endTime.value_or(timeline_.now),
                                  .subject = subjectOf(session),
                                  .isOpen = !part.endTime});
  }

 private:
  std::size_t subjectOf(const Activity& session) {
    TimelineSubject subject{.app = apps_.indexOf(session.appName)};
    if (session.title && !session.title->empty()) subject.title = titles_.indexOf(*session.title);
    if (const Category* category = finder_.categoryOf(session)) {
      subject.category = categoryNames_.indexOf(category->name);
    }
    const auto [found, isNew] = subjects_.emplace(
        std::tuple(subject.app, subject.title, subject.category), timeline_.subjects.size());
    if (isNew) timeline_.subjects.push_back(subject);
    return found->second;
  }

  TimelineHistory& timeline_;
  CategoryFinder finder_;
  TextIndex apps_{timeline_.apps};
  TextIndex titles_{timeline_.titles};
  std::vector<std::string> names_;
  TextIndex categoryNames_{names_};
  std::map<std::tuple<std::size_t, std::optional<std::size_t>, std::optional<std::size_t>>,
           std::size_t>
      subjects_;
};

}  // namespace

Period timelinePeriod(History& history, const Period& period, const ReportDays& days, Date now) {
  return recordedDays(history, period, days, now);
}

TimelineHistory readTimeline(History& history, const ReportDays& days, const Rules& rules,
                             const Period& period, Date now, const SessionTest& isMeant) {
  TimelineHistory timeline{.period = period, .days = {}, .now = now};
  const Period shown = timelinePeriod(history, period, days, now);
  for (int i = 0; i < dayCount(shown); ++i) {
    const CalendarDate date = daysAfter(shown.first, i);
    timeline.days.push_back({date, days.rangeOf({date, date})});
  }
  timeline.beginnings = history.beginnings();
  Reader reader(timeline, rules);
  history.visitSessionsIn(timeline.range(), now, [&](const Activity& session) {
    if (isMeant && !isMeant(session)) {
      ++timeline.leftOut;
    } else {
      reader.add(session);
    }
  });
  timeline.notes = history.notesIn(timeline.range());
  return timeline;
}

}  // namespace tessum
