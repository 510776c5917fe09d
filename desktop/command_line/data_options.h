// Reports as data for other programs.

#pragma once

#include <optional>
#include <string_view>

#include "desktop/data/report_data.h"

namespace CLI {
class App;
}

namespace tessum {

struct DataOptions {
  bool isJson = false;
  bool isCsv = false;
};

// Adds --json and --csv to `command`, which has --plain; `options` must live as long.
void addDataOptions(CLI::App& command, DataOptions& options);

// Adds --json alone, for what has no rows; `isJson` must live as long as `command`.
void addJsonOption(CLI::App& command, bool& isJson);

// Absent where a report for people is wanted.
[[nodiscard]] std::optional<DataFormat> formatOf(const DataOptions& options);

// Text on its way to standard output, written in large pieces. Not thread-safe.
class LargeOutput {
 public:
  void add(std::string_view text);

  // Writes the rest. Throws std::system_error, as add() does.
  void flush();

 private:
  std::string pending_;
};

}  // namespace tessum
