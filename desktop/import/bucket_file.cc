// ActivityWatch's export. The windows of a computer are cut by what its bucket of absences says:
//
//   {"buckets": {
//     "aw-watcher-window_desk": {"type": "currentwindow", "hostname": "desk", "events": [
//       {"timestamp": "2025-03-04T09:00:00Z", "duration": 60.5, "data": {"app": "A", "title":
//       "B"}}]},
//     "aw-watcher-afk_desk": {"type": "afkstatus", "hostname": "desk", "events": [
//       {"timestamp": "2025-03-04T09:00:30Z", "duration": 20, "data": {"status": "afk"}}]}}}
//
// The members of a bucket may come in any order, so the absences of all buckets are read first.

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/platform/calendar.h"
#include "desktop/import/export_file.h"
#include "desktop/import/import_time.h"
#include "desktop/import/json_pieces.h"

namespace tessum {
namespace {

struct Bucket {
  std::string type;
  std::string hostname;  // empty where it is not known
  std::vector<DayRange> absences;
};

DayRange timeOf(const json::Field& event) {
  const auto start = parseOffsetDateTime(event.required("timestamp").text());
  if (!start) event.required("timestamp").fail("a time");
  const double seconds = event.required("duration").real();
  const Date end = movedBy(*start, seconds);
  if (!(seconds >= 0) || !isInHistory(*start) || !isInHistory(end)) {
    event.required("duration").fail("seconds");
  }
  return {*start, end};
}

// The ranges in order, with those that touch joined.
std::vector<DayRange> joined(std::vector<DayRange> ranges) {
  std::sort(ranges.begin(), ranges.end(), [](const DayRange& a, const DayRange& b) {
    return secondsBetween(a.start, b.start) > 0;
  });
  std::vector<DayRange> all;
  for (const DayRange& range : ranges) {
    if (all.empty() || secondsBetween(all.back().end, range.start) > 0) {
      all.push_back(range);
    } else if (secondsBetween(all.back().end, range.end) > 0) {
      all.back().end = range.end;
    }
  }
  return all;
}

// What `absences`, which are joined, leave of `time`.
std::vector<DayRange> cut(DayRange time, const std::vector<DayRange>& absences) {
  const auto endsBefore = [](const DayRange& absence, Date date) {
    return secondsBetween(absence.end, date) >= 0;
  };
  std::vector<DayRange> rest;
  auto absence = std::lower_bound(absences.begin(), absences.end(), time.start, endsBefore);
  for (; absence != absences.end() && secondsBetween(absence->start, time.end) > 0; ++absence) {
    if (secondsBetween(time.start, absence->start) > 0) {
      rest.push_back({time.start, absence->start});
    }
    time.start = absence->end;
  }
  // An event may last no time at all.
  const double left = secondsBetween(time.start, time.end);
  if (left > 0 || (left == 0 && rest.empty())) rest.push_back(time);
  return rest;
}

class BucketFile final : public ExportFile {
 public:
  explicit BucketFile(const std::string& path) : path_(path) {
    read([&](const std::string& bucket, std::string_view text) { readAbsence(bucket, text); });
    for (auto& [name, bucket] : buckets_) bucket.absences = joined(std::move(bucket.absences));
  }

  void visit(const ImportVisitor& visitor) override {
    for (int i = 0; i < brokenAbsences_; ++i) visitor.broken();
    std::map<std::string, std::vector<DayRange>> absences;
    for (const auto& [name, bucket] : buckets_) {
      if (bucket.type == kWindows) absences[name] = absencesOn(bucket.hostname);
    }
    read([&](const std::string& name, std::string_view text) {
      const auto ofWindows = absences.find(name);
      if (ofWindows != absences.end()) visitWindow(text, ofWindows->second, visitor);
    });
  }

 private:
  static constexpr const char* kWindows = "currentwindow";
  static constexpr const char* kAbsences = "afkstatus";

  // Gives each event with the name of its bucket, and keeps what else a bucket has.
  void read(const std::function<void(const std::string&, std::string_view)>& takeEvent) {
    constexpr std::size_t kBucketMember = 3;
    const auto isEntered = [](const JsonPath& place, bool isArray) {
      if (place.size() == kBucketMember) return place.back() == "events" && isArray;
      return place.size() < kBucketMember && (place.empty() || place.front() == "buckets");
    };
    const auto take = [&](const JsonPath& place, std::string_view text) {
      if (place.size() > kBucketMember) return takeEvent(place[1], text);
      if (place.size() < kBucketMember) return;
      if (place.back() == "type") buckets_[place[1]].type = textOf(text);
      if (place.back() == "hostname") buckets_[place[1]].hostname = textOf(text);
    };
    readJsonPieces(path_, {.isEntered = isEntered, .take = take});
  }

  static std::string textOf(std::string_view source) {
    try {
      const json::Value value = json::parse(source);
      return value.text() == nullptr ? "" : *value.text();
    } catch (const json::DecodingError&) {
      return "";
    }
  }

  void readAbsence(const std::string& name, std::string_view text) {
    if (text.find("\"afk\"") == std::string_view::npos) return;
    try {
      const json::Value value = json::parse(text);
      const json::Field event(value);
      const auto status = event.required("data").optional("status");
      if (!status || status->text() != "afk") return;
      buckets_[name].absences.push_back(timeOf(event));
    } catch (const json::DecodingError&) {
      brokenAbsences_ += 1;
    }
  }

  // Those that the computer's own buckets tell of, and those of no known computer.
  [[nodiscard]] std::vector<DayRange> absencesOn(const std::string& hostname) const {
    std::vector<DayRange> all;
    for (const auto& [name, bucket] : buckets_) {
      if (bucket.type != kAbsences) continue;
      const bool isOther = !bucket.hostname.empty() && !hostname.empty();
      if (isOther && bucket.hostname != hostname) continue;
      all.insert(all.end(), bucket.absences.begin(), bucket.absences.end());
    }
    return joined(std::move(all));
  }

  static void visitWindow(std::string_view text, const std::vector<DayRange>& absences,
                          const ImportVisitor& visitor) {
    try {
      const json::Value value = json::parse(text);
      const json::Field event(value);
      const json::Field data = event.required("data");
      const DayRange time = timeOf(event);
      Activity session{.id = {},
                       .appName = data.required("app").text(),
                       .bundleID = {},
                       .title = {},
                       .startTime = {},
                       .endTime = {}};
      if (session.appName.empty()) data.fail("an application");
      if (const auto title = data.optional("title")) session.title = title->text();
      const auto rest = cut(time, absences);
      if (rest.empty()) visitor.away();
      for (const DayRange& part : rest) {
        session.startTime = part.start;
        session.endTime = part.end;
        visitor.session(session);
      }
    } catch (const json::DecodingError&) {
      visitor.broken();
    }
  }

  std::string path_;
  std::map<std::string, Bucket> buckets_;
  int brokenAbsences_ = 0;
};

}  // namespace

std::unique_ptr<ExportFile> makeBucketFile(const std::string& path) {
  return std::make_unique<BucketFile>(path);
}

}  // namespace tessum
