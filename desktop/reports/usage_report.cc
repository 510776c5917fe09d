#include "desktop/reports/usage_report.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/store/records.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/reports/day_report.h"

namespace tessum {
namespace {

using enum Table::Alignment;

// How many titles are shown of what a rule took, or of what none took.
constexpr std::size_t kTitles = 5;

std::string nameOf(const UsageGroup& group, Grouping grouping) {
  if (group.name) return *group.name;
  if (grouping == Grouping::category) return std::string(kUncategorised);
  return grouping == Grouping::note ? "Without a note" : "Without a title";
}

std::string totalText(const Total& total) {
  if (total.sessions == 0) return "";
  return shortDuration(total.seconds) + " in " + counted(total.sessions, "session");
}

double largestOf(const std::vector<UsageGroup>& groups) {
  double largest = 0;
  for (const UsageGroup& group : groups) largest = std::max(largest, group.total.seconds);
  return largest;
}

double shareOf(double seconds, double whole) {
  return whole > 0 ? std::clamp(seconds / whole, 0.0, 1.0) : 0;
}

// The largest `most` groups, and one of all the others.
std::vector<UsageGroup> shown(const std::vector<UsageGroup>& groups, std::size_t most) {
  if (most == 0 || groups.size() <= most) return groups;
  const std::vector<bool> areShown = areLargest(groups, most);
  std::vector<UsageGroup> lines;
  UsageGroup others;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (areShown[i]) {
      lines.push_back(groups[i]);
    } else {
      others.total.seconds += groups[i].total.seconds;
      others.total.sessions += groups[i].total.sessions;
    }
  }
  others.name = counted(groups.size() - most, "other");
  lines.push_back(std::move(others));
  return lines;
}

class GroupTable {
 public:
  GroupTable(double total, std::vector<Grouping> by, std::size_t most)
      : total_(total), by_(std::move(by)), most_(most) {}

  // Adds a line for each group, and under it one for each of its parts.
  void add(const std::vector<UsageGroup>& groups, std::size_t level = 0) {
    const auto lines = shown(groups, most_);
    if (level == 0) longest_ = largestOf(lines);
    for (const UsageGroup& group : lines) {
      const double seconds = group.total.seconds;
      const auto percent = static_cast<int>(std::lround(shareOf(seconds, total_) * 100));
      table_.addRow(
          {{std::string(2 * level, ' ') + nameOf(group, by_[level]),
            level == 0 ? Tone::strong : Tone::plain},
           {shortDuration(seconds)},
           {std::to_string(percent) + "%"},
           {counted(group.total.sessions, "session"), Tone::faint},
           Table::barCell(shareOf(seconds, longest_), level == 0 ? Tone::accent : Tone::faint)});
      if (!group.groups.empty()) add(group.groups, level + 1);
    }
  }

  [[nodiscard]] std::string text(const Paper& paper) const { return table_.text(paper); }

 private:
  double total_;
  std::vector<Grouping> by_;
  std::size_t most_;
  double longest_ = 0;  // the seconds of the longest bar
  Table table_{{left, right, right, right, left}, {3}};
};

std::string dayTable(const std::vector<UsageGroup>& days, const CalendarDate& first,
                     const Paper& paper) {
  const double largest = largestOf(days);
  Table table({left, left, right, left});
  for (const UsageGroup& day : days) {
    const int weekday = weekdayFromMonday(daysAfter(first, day.number));
    table.addRow({{std::string(weekdayName(weekday)).substr(0, 3), Tone::faint},
                  {day.name.value_or("")},
                  {day.total.sessions > 0 ? shortDuration(day.total.seconds) : "-"},
                  Table::barCell(shareOf(day.total.seconds, largest), Tone::accent)});
  }
  return table.text(paper);
}

std::string changeText(const Usage& usage) {
  const std::string before = "the " + counted(dayCount(usage.period), "day") + " before (" +
                             shortDuration(usage.before->seconds) + ")";
  const double change = usage.total.seconds - usage.before->seconds;
  if (std::abs(change) < 60) return "As much as in " + before + ".";
  return shortDuration(std::abs(change)) + (change > 0 ? " more" : " less") + " than in " + before +
         ".";
}

std::string averageText(const Usage& usage) {
  const auto recorded = std::count_if(usage.days.begin(), usage.days.end(),
                                      [](const auto& day) { return day.total.sessions > 0; });
  return counted(recorded, "day") + " with records, " +
         shortDuration(usage.total.seconds / static_cast<double>(recorded)) + " on average.";
}

// The largest titles of `groups`.
void addTitles(Table& table, const std::vector<UsageGroup>& titles, const std::string& indent) {
  for (const UsageGroup& title : shown(titles, kTitles)) {
    table.addRow({{shortDuration(title.total.seconds)},
                  {counted(title.total.sessions, "session"), Tone::faint},
                  {indent + nameOf(title, Grouping::title)}});
  }
}

}  // namespace

std::string usageReport(const Usage& usage, const std::vector<Grouping>& by, std::size_t most,
                        const Paper& paper) {
  std::string text = heading(longPeriodText(usage.period), totalText(usage.total), paper) + "\n";
  const bool isOneDay = dayCount(usage.period) == 1;
  if (usage.total.sessions == 0) {
    return text + nothingRecordedText(usage.leavesOutSome, dayCount(usage.period)) + "\n";
  }
  if (!isOneDay) {
    text += dayTable(usage.days, usage.period.first, paper) + "\n" +
            paragraph(averageText(usage), paper);
    if (usage.before) text += paragraph(changeText(usage), paper);
    text += "\n";
  }
  GroupTable table(usage.total.seconds, by, most);
  table.add(usage.groups);
  text += table.text(paper);
  if (usage.uncategorised.empty()) return text;

  Table titles({right, right, left});
  addTitles(titles, usage.uncategorised, "");
  return text + "\n" + toned(kUncategorised, Tone::strong, paper) + "\n" + titles.text(paper);
}

std::string ruleReport(const std::vector<UsageGroup>& groups, const Rules& rules,
                       const Period& period, const Paper& paper) {
  const auto groupOf = [&](std::size_t number) {
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const UsageGroup& group) {
      return group.number == static_cast<int>(number);
    });
    return found == groups.end() ? UsageGroup{} : *found;
  };
  Table table({right, right, left});
  const auto add = [&](const UsageGroup& group, const std::string& name) {
    table.addRow({{shortDuration(group.total.seconds)},
                  {counted(group.total.sessions, "session"), Tone::faint},
                  {name, Tone::strong}});
    addTitles(table, group.groups, "  ");
  };
  for (std::size_t i = 0; i < rules.categories.size(); ++i) {
    const Category& category = rules.categories[i];
    add(groupOf(i + 1), category.name + ", line " + std::to_string(category.line) + ":" +
                            patternText(category.windows));
  }
  add(groupOf(0), std::string(kUncategorised));
  return toned(longPeriodText(period), Tone::strong, paper) + "\n\n" + table.text(paper);
}

}  // namespace tessum
