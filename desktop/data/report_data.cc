#include "desktop/data/report_data.h"

#include <algorithm>

#include "core/json/writer.h"
#include "desktop/data/csv.h"
#include "desktop/data/values.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/usage/day_history.h"

namespace tessum {
namespace {

using json::Value;

Value periodValue(const Period& period, const DayRange& range) {
  return Value::Object{{"first", dateText(period.first)},
                       {"last", dateText(period.last)},
                       {"start", offsetDateTime(range.start)},
                       {"end", offsetDateTime(range.end)}};
}

std::vector<UsageGroup> largest(const std::vector<UsageGroup>& groups, std::size_t most) {
  const std::vector<bool> areShown = areLargest(groups, most);
  std::vector<UsageGroup> rows;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (areShown[i]) rows.push_back(groups[i]);
  }
  return rows;
}

// A row for each group, which names it under the name of its grouping.
Value groupsValue(const std::vector<UsageGroup>& groups, const std::vector<Grouping>& by,
                  std::size_t level, std::size_t most) {
  Value::Array rows;
  for (const UsageGroup& group : largest(groups, most)) {
    Value::Object row{{std::string(groupingName(by[level])), orNull(group.name)},
                      {"seconds", secondsValue(group.total.seconds)},
                      {"sessions", group.total.sessions}};
    if (level + 1 < by.size()) row["rows"] = groupsValue(group.groups, by, level + 1, most);
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string usageJson(const Usage& usage, const std::vector<Grouping>& by, std::size_t most) {
  Value::Array names;
  for (const Grouping grouping : by) names.push_back(groupingName(grouping));
  Value::Object report{{"report", "usage"},
                       {"period", periodValue(usage.period, usage.range)},
                       {"by", std::move(names)},
                       {"seconds", secondsValue(usage.total.seconds)},
                       {"sessions", usage.total.sessions},
                       {"rows", groupsValue(usage.groups, by, 0, most)}};
  if (dayCount(usage.period) > 1) {
    report["days"] = groupsValue(usage.days, {Grouping::day}, 0, 0);
    report["secondsBefore"] = usage.before ? secondsValue(usage.before->seconds) : Value();
  }
  return json::compact(report) + "\n";
}

// One line for each of the smallest groups, with the names of those that it is in.
std::string usageCsv(const Usage& usage, const std::vector<Grouping>& by, std::size_t most) {
  std::vector<std::string> header;
  for (const Grouping grouping : by) header.emplace_back(groupingName(grouping));
  header.insert(header.end(), {"seconds", "sessions"});
  std::string text = csvLine(header);
  const auto add = [&](std::vector<std::string> names, const Total& total) {
    names.push_back(secondsText(total.seconds));
    names.push_back(std::to_string(total.sessions));
    text += csvLine(names);
  };
  for (const UsageGroup& group : largest(usage.groups, most)) {
    const std::string name = group.name.value_or("");
    if (by.size() < 2) add({name}, group.total);
    for (const UsageGroup& part : largest(group.groups, most)) {
      add({name, part.name.value_or("")}, part.total);
    }
  }
  return text;
}

}  // namespace

struct RecordData::Row {
  const char* kind = nullptr;
  Date start;
  std::optional<Date> end;
  std::optional<std::string> appName;
  std::optional<std::string> bundleID;
  std::optional<std::string> text;
  std::optional<std::int64_t> number = {};  // of a note
};

RecordData::RecordData(DataFormat format, const std::string& report,
                       const std::optional<Period>& period, const DayRange& range, Date now,
                       const TextSink& sink)
    : format_(format), range_(range), now_(now), sink_(sink) {
  if (format_ == DataFormat::csv) {
    sink_(csvLine({"kind", "start", "end", "seconds", "application", "bundle_id", "text"}));
    return;
  }
  sink_("{\"report\":" + json::compact(report) + ",\"period\":" +
        (period ? json::compact(periodValue(*period, range)) : "null") + ",\"rows\":[");
}

void RecordData::add(const Activity& session) {
  const Activity part = cutTo(range_, session, now_);
  sessions_ += 1;
  seconds_ += secondsUntil(now_, part);
  add({"session", part.startTime, part.endTime, part.appName, part.bundleID, part.title, {}});
}

void RecordData::add(const Annotation& note) {
  add({"note", note.startedAt, note.endedAt, {}, {}, note.text, note.id});
}

void RecordData::add(const Row& row) {
  const double seconds = secondsUntil(now_, row.start, row.end);
  const auto end = row.end ? std::optional(offsetDateTime(*row.end)) : std::nullopt;
  if (format_ == DataFormat::csv) {
    sink_(csvLine({row.kind, offsetDateTime(row.start), end.value_or(""), secondsText(seconds),
                   row.appName.value_or(""), row.bundleID.value_or(""), row.text.value_or("")}));
    return;
  }
  Value::Object object{{"kind", row.kind},
                       {"start", offsetDateTime(row.start)},
                       {"end", orNull(end)},
                       {"seconds", secondsValue(seconds)},
                       {"text", orNull(row.text)}};
  if (row.appName) {
    object["application"] = *row.appName;
    object["bundle_id"] = orNull(row.bundleID);
  }
  if (row.number) object["id"] = *row.number;
  sink_((count_++ == 0 ? "\n" : ",\n") + json::compact(object));
}

void RecordData::finish() {
  if (format_ == DataFormat::csv) return;
  sink_("\n]");
  finishTotals();
}

void RecordData::finishTotals() {
  sink_(",\"seconds\":" + secondsText(seconds_) + ",\"sessions\":" + std::to_string(sessions_) +
        "}\n");
}

void RecordData::finish(const Finds& finds, std::size_t most) {
  seconds_ = finds.total().seconds;
  sessions_ = finds.total().sessions;
  if (format_ == DataFormat::csv) return;
  auto groups = finds.newestFirst();
  groups.resize(std::min(groups.size(), most));
  Value::Array values;
  for (const Find& find : groups) {
    values.push_back(Value::Object{{"application", find.appName},
                                   {"bundle_id", orNull(find.bundleID)},
                                   {"text", orNull(find.title)},
                                   {"last", offsetDateTime(find.last)},
                                   {"seconds", secondsValue(find.total.seconds)},
                                   {"sessions", find.total.sessions}});
  }
  sink_("\n],\"groups\":" + json::compact(values));
  finishTotals();
}

std::string usageData(DataFormat format, const Usage& usage, const std::vector<Grouping>& by,
                      std::size_t most) {
  return format == DataFormat::json ? usageJson(usage, by, most) : usageCsv(usage, by, most);
}

}  // namespace tessum
