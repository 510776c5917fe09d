// What "arbtt-dump -t JSON" prints: the windows that were there, every so many milliseconds, and
// for how many there had been no input:
//
//   [{"date": "2025-03-04T09:00:00Z", "rate": 60000, "inactive": 1200, "windows": [
//      {"active": true, "program": "A", "title": "B"}, ...]}, ...]
//
// Samples of the same window, one after the other, become one session.

#include <algorithm>
#include <utility>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "desktop/import/export_file.h"
#include "desktop/import/import_time.h"
#include "desktop/import/json_pieces.h"

namespace tessum {
namespace {

struct Sample {
  Date time;
  double seconds = 0;                  // that it stands for
  double secondsInactive = 0;          // before it
  std::optional<std::string> program;  // of the active window; absent where there is none
  std::optional<std::string> title;
};

Sample sampleOf(std::string_view text) {
  constexpr double kMillisecond = 1e-3;
  const json::Value value = json::parse(text);
  const json::Field field(value);
  Sample sample;
  const auto time = parseOffsetDateTime(field.required("date").text());
  if (!time || !isInHistory(*time)) field.required("date").fail("a time");
  sample.time = *time;
  sample.seconds = field.required("rate").real() * kMillisecond;
  constexpr double kDay = 86400;
  if (!(sample.seconds > 0) || sample.seconds > kDay) field.required("rate").fail("milliseconds");
  if (const auto inactive = field.optional("inactive")) {
    sample.secondsInactive = std::max(0.0, inactive->real() * kMillisecond);
  }
  for (const json::Field& window : field.required("windows").elements()) {
    const auto isActive = window.optional("active");
    if (!isActive || !isActive->boolean()) continue;
    sample.program = window.required("program").text();
    if (const auto title = window.optional("title")) sample.title = title->text();
    if (sample.program->empty()) window.fail("a program");
    break;
  }
  return sample;
}

class SampleFile final : public ExportFile {
 public:
  SampleFile(std::string path, std::optional<double> awayAfter)
      : path_(std::move(path)), awayAfter_(awayAfter) {}

  void visit(const ImportVisitor& visitor) override {
    readJsonPieces(path_, {.isEntered = [](const JsonPath& place, bool) { return place.empty(); },
                           .take =
                               [&](const JsonPath&, std::string_view text) {
                                 try {
                                   add(sampleOf(text), visitor);
                                 } catch (const json::DecodingError&) {
                                   visitor.broken();
                                 }
                               }});
    end(visitor);
  }

 private:
  void add(const Sample& sample, const ImportVisitor& visitor) {
    if (awayAfter_ && sample.secondsInactive >= *awayAfter_) {
      endBefore(movedBy(sample.time, -sample.secondsInactive));
      end(visitor);
      visitor.away();
      return;
    }
    if (!continues(sample)) {
      endBefore(sample.time);
      end(visitor);
      if (!sample.program) return;
      session_ = Activity{.id = {},
                          .appName = *sample.program,
                          .bundleID = {},
                          .title = sample.title,
                          .startTime = sample.time,
                          .endTime = {}};
    }
    session_->endTime = movedBy(sample.time, sample.seconds);
  }

  // Whether the sample is of the window before it, and was taken in time.
  [[nodiscard]] bool continues(const Sample& sample) const {
    if (!session_ || session_->appName != sample.program || session_->title != sample.title) {
      return false;
    }
    const bool isLater = secondsBetween(session_->startTime, sample.time) >= 0;
    const double late = secondsBetween(session_->endTime.value_or(sample.time), sample.time);
    return isLater && late <= sample.seconds / 2;
  }

  // The session ends at `date` unless it has ended before.
  void endBefore(Date date) {
    if (!session_ || secondsBetween(session_->startTime, date) < 0) return;
    if (secondsBetween(date, session_->endTime.value_or(date)) > 0) session_->endTime = date;
  }

  void end(const ImportVisitor& visitor) {
    if (session_) visitor.session(*session_);
    session_.reset();
  }

  std::string path_;
  std::optional<double> awayAfter_;
  std::optional<Activity> session_;  // that the next sample may continue
};

}  // namespace

std::unique_ptr<ExportFile> makeSampleFile(const std::string& path,
                                           std::optional<double> awayAfter) {
  return std::make_unique<SampleFile>(path, awayAfter);
}

}  // namespace tessum
