#include "desktop/usage/dimension.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"

namespace tessum {
namespace {

constexpr Date kNever{std::numeric_limits<double>::infinity()};

// Numbers texts in the order in which they come up.
class Names {
 public:
  int numberOf(const std::string& name) {
    const auto [entry, isNew] = numbers_.try_emplace(name, static_cast<int>(names_.size()));
    if (isNew) names_.push_back(&entry->first);  // which stays where it is
    return entry->second;
  }
  [[nodiscard]] const std::string& name(int number) const {
    return *names_[static_cast<std::size_t>(number)];
  }

 private:
  std::unordered_map<std::string, int> numbers_;
  std::vector<const std::string*> names_;
};

// An application is its name and its identifier: two may have the same name.
class AppDimension final : public Dimension {
 public:
  GroupSpan spanOf(const Activity& session, Date) override {
    auto& groups = groups_[session.appName];
    for (const int group : groups) {
      if (apps_[static_cast<std::size_t>(group)].identifier == session.bundleID) {
        return {group, kNever};
      }
    }
    groups.push_back(static_cast<int>(apps_.size()));
    apps_.push_back({session.appName, session.bundleID});
    return {groups.back(), kNever};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return apps_[static_cast<std::size_t>(group)].name;
  }

 private:
  struct App {
    std::string name;
    std::optional<std::string> identifier;
  };

  std::vector<App> apps_;
  std::unordered_map<std::string, std::vector<int>> groups_;  // of each name
};

// Group 0 is the time without a name.
class TitleDimension final : public Dimension {
 public:
  GroupSpan spanOf(const Activity& session, Date) override {
    const bool hasTitle = session.title && !session.title->empty();
    return {hasTitle ? titles_.numberOf(*session.title) + 1 : 0, kNever};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return group == 0 ? std::nullopt : std::optional(titles_.name(group - 1));
  }

 private:
  Names titles_;
};

class CategoryDimension final : public Dimension {
 public:
  explicit CategoryDimension(CategoryFinder& categories) : categories_(categories) {}
  GroupSpan spanOf(const Activity& session, Date) override {
    const Category* category = categories_.categoryOf(session);
    return {category == nullptr ? 0 : names_.numberOf(category->name) + 1, kNever};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return group == 0 ? std::nullopt : std::optional(names_.name(group - 1));
  }

 private:
  CategoryFinder& categories_;
  Names names_;
};

class RuleDimension final : public Dimension {
 public:
  RuleDimension(const Rules& rules, CategoryFinder& categories)
      : rules_(rules), categories_(categories) {}
  GroupSpan spanOf(const Activity& session, Date) override {
    const Category* category = categories_.categoryOf(session);
    if (category == nullptr) return {0, kNever};
    return {static_cast<int>(category - rules_.categories.data()) + 1, kNever};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    if (group == 0) return std::nullopt;
    return rules_.categories[static_cast<std::size_t>(group) - 1].name;
  }

 private:
  const Rules& rules_;
  CategoryFinder& categories_;
};

class UncategorisedTitleDimension final : public Dimension {
 public:
  explicit UncategorisedTitleDimension(CategoryFinder& categories) : categories_(categories) {}
  GroupSpan spanOf(const Activity& session, Date at) override {
    if (categories_.categoryOf(session) != nullptr) return {0, kNever};
    return titles_.spanOf(session, at);
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return titles_.nameOf(group);
  }

 private:
  CategoryFinder& categories_;
  TitleDimension titles_;
};

// Notes of the same text are one group. Where notes overlap, which only other programs write, the
// one that began last counts.
class NoteDimension final : public Dimension {
 public:
  NoteDimension(std::span<const Annotation> notes, Date now) : notes_(notes), now_(now) {
    double latest = -kNever.secondsSince1970;
    for (const Annotation& note : notes_) {
      latest = std::max(latest, endOf(note).secondsSince1970);
      latestEnds_.push_back({latest});
    }
  }

  GroupSpan spanOf(const Activity&, Date at) override {
    const auto isBefore = [](Date date, const Annotation& note) {
      return secondsBetween(date, note.startedAt) > 0;
    };
    const auto next = std::upper_bound(notes_.begin(), notes_.end(), at, isBefore);
    Date end = next == notes_.end() ? kNever : next->startedAt;
    for (auto i = static_cast<std::size_t>(next - notes_.begin()); i > 0; --i) {
      if (secondsBetween(at, latestEnds_[i - 1]) <= 0) break;
      const Annotation& note = notes_[i - 1];
      if (secondsBetween(at, endOf(note)) <= 0) continue;
      if (secondsBetween(endOf(note), end) > 0) end = endOf(note);
      return {texts_.numberOf(note.text) + 1, end};
    }
    return {0, end};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return group == 0 ? std::nullopt : std::optional(texts_.name(group - 1));
  }

 private:
  [[nodiscard]] Date endOf(const Annotation& note) const { return note.endedAt.value_or(now_); }

  std::span<const Annotation> notes_;
  std::vector<Date> latestEnds_;  // of each note and all before it
  Date now_;
  Names texts_;
};

// Sessions come nearly in the order of time, so the day of the last one is mostly that of the next.
class Days {
 public:
  explicit Days(const ReportDays& days) : days_(days) {}

  // Whether another day than the last one holds `at`.
  [[nodiscard]] bool changesAt(Date at) {
    if (secondsBetween(range_.start, at) >= 0 && secondsBetween(at, range_.end) > 0) return false;
    date_ = days_.dayOf(at);
    range_ = days_.rangeOf({date_, date_});
    return true;
  }

  // Of the last day.
  [[nodiscard]] const CalendarDate& date() const { return date_; }
  [[nodiscard]] Date end() const { return range_.end; }

 private:
  const ReportDays& days_;
  CalendarDate date_;
  DayRange range_;
};

class DayDimension final : public Dimension {
 public:
  DayDimension(const ReportDays& days, const CalendarDate& first) : days_(days), first_(first) {}
  GroupSpan spanOf(const Activity&, Date at) override {
    if (days_.changesAt(at)) group_ = daysBetween(first_, days_.date());
    return {group_, days_.end()};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return dateText(daysAfter(first_, group));
  }

 private:
  Days days_;
  CalendarDate first_;
  int group_ = 0;
};

class WeekdayDimension final : public Dimension {
 public:
  explicit WeekdayDimension(const ReportDays& days) : days_(days) {}
  GroupSpan spanOf(const Activity&, Date at) override {
    if (days_.changesAt(at)) group_ = weekdayFromMonday(days_.date());
    return {group_, days_.end()};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    return weekdayName(group);
  }

 private:
  Days days_;
  int group_ = 0;
};

// Hours from the first one of the day on.
class HourDimension final : public Dimension {
 public:
  explicit HourDimension(int firstHour) : firstHour_(firstHour) {}
  GroupSpan spanOf(const Activity&, Date at) override {
    if (secondsBetween(range_.start, at) < 0 || secondsBetween(at, range_.end) <= 0) {
      group_ = (wallTime(at).hour - firstHour_ + 24) % 24;
      range_ = {at, endOfHour(at)};
    }
    return {group_, range_.end};
  }
  [[nodiscard]] std::optional<std::string> nameOf(int group) const override {
    const int hour = (group + firstHour_) % 24;
    return (hour < 10 ? "0" : "") + std::to_string(hour) + ":00";
  }

 private:
  int firstHour_;
  DayRange range_;
  int group_ = 0;
};

}  // namespace

std::unique_ptr<Dimension> makeDimension(Grouping grouping, const DimensionSources& sources) {
  switch (grouping) {
    case Grouping::app:
      return std::make_unique<AppDimension>();
    case Grouping::title:
      return makeTitleDimension();
    case Grouping::category:
      return std::make_unique<CategoryDimension>(sources.categories);
    case Grouping::note:
      return std::make_unique<NoteDimension>(sources.notes, sources.now);
    case Grouping::day:
      return std::make_unique<DayDimension>(sources.days, sources.firstDay);
    case Grouping::weekday:
      return std::make_unique<WeekdayDimension>(sources.days);
    case Grouping::hour:
      break;
  }
  return std::make_unique<HourDimension>(sources.days.firstHour());
}

std::unique_ptr<Dimension> makeRuleDimension(const Rules& rules, CategoryFinder& categories) {
  return std::make_unique<RuleDimension>(rules, categories);
}

std::unique_ptr<Dimension> makeTitleDimension() {
  return std::make_unique<TitleDimension>();
}

std::unique_ptr<Dimension> makeUncategorisedTitleDimension(CategoryFinder& categories) {
  return std::make_unique<UncategorisedTitleDimension>(categories);
}

}  // namespace tessum
