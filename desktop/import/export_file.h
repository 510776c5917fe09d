// The files of other programs' histories, and of Tessum's own, that can be imported:
//
// - buckets: ActivityWatch's export, {"buckets": {"NAME": {"type": "currentwindow", ...}}}
// - samples: what "arbtt-dump -t JSON" prints, [{"date": ..., "windows": [...]}, ...]
// - history: Tessum's own export, {"activities": [...], "annotations": [...]}

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/store/records.h"

namespace tessum {

struct ImportVisitor {
  std::function<void(const Activity&)> session;
  std::function<void(const Annotation&)> note;
  std::function<void()> broken;  // an event that cannot be read
  std::function<void()> away;    // an event of a time at which nobody was there
};

// A file that has been looked through to its end. Not thread-safe.
class ExportFile {
 public:
  virtual ~ExportFile() = default;

  // Reads the events, a file of any size in little memory. Throws BrokenFile where the file can no
  // longer be read.
  virtual void visit(const ImportVisitor& visitor) = 0;
};

// Looks through the file at `path`. A sample counts as away that long after the last input; absent
// means never. Throws BrokenFile, which says what is wrong, where it is no export of these.
[[nodiscard]] std::unique_ptr<ExportFile> openExport(const std::string& path,
                                                     std::optional<double> awayAfter);

// The readers of each form; openExport() chooses.
[[nodiscard]] std::unique_ptr<ExportFile> makeBucketFile(const std::string& path);
[[nodiscard]] std::unique_ptr<ExportFile> makeSampleFile(const std::string& path,
                                                         std::optional<double> awayAfter);
[[nodiscard]] std::unique_ptr<ExportFile> makeHistoryFile(const std::string& path);

}  // namespace tessum
