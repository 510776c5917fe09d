#include "desktop/command_line/data_options.h"

#include <CLI/CLI.hpp>

#include "desktop/command_line/standard_output.h"

namespace tessum {

void addDataOptions(CLI::App& command, DataOptions& options) {
  auto* json = command.add_flag("--json", options.isJson, "print the report as JSON");
  auto* csv = command.add_flag("--csv", options.isCsv, "print it as comma-separated lines");
  json->excludes(csv);
  for (auto* flag : {json, csv}) flag->excludes("--plain");
}

void addJsonOption(CLI::App& command, bool& isJson) {
  command.add_flag("--json", isJson, "print it as JSON");
}

std::optional<DataFormat> formatOf(const DataOptions& options) {
  if (options.isJson) return DataFormat::json;
  if (options.isCsv) return DataFormat::csv;
  return std::nullopt;
}

void LargeOutput::add(std::string_view text) {
  constexpr std::size_t kPiece = 1 << 16;
  pending_ += text;
  if (pending_.size() >= kPiece) flush();
}

void LargeOutput::flush() {
  printForeign(pending_);
  pending_.clear();
}

}  // namespace tessum
