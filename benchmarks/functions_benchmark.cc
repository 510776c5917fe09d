// Measures the functions behind an answer over one year of an invented history.

#include <benchmark/benchmark.h>

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "core/json/reader.h"
#include "core/json/writer.h"
#include "core/mcp/duration_argument.h"
#include "core/mcp/json_rpc.h"
#include "core/mcp/mcp_records.h"
#include "core/mcp/mcp_server.h"
#include "core/mcp/reports.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/database.h"
#include "tools/demo_history.h"

namespace tessum {
namespace {

const SystemCalendar kCalendar;

// A database in its own folder, which is removed with it.
class YearOfHistory {
 public:
  YearOfHistory() : folder_(std::filesystem::temp_directory_path() / "tessum-benchmark-XXXXXX") {
    std::string path = folder_.string();
    if (mkdtemp(path.data()) == nullptr) throw std::system_error(errno, std::generic_category());
    folder_ = path;
    const std::string file = (folder_ / "activities.db").string();
    writeDemoHistory(
        file, demoHistory({.days = 364, .sessionsPerDay = 300}, SystemClock().now(), kCalendar),
        kCalendar);
    database_ = std::make_unique<Database>(file, kCalendar);
  }
  ~YearOfHistory() {
    database_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  YearOfHistory(const YearOfHistory&) = delete;
  YearOfHistory& operator=(const YearOfHistory&) = delete;

  [[nodiscard]] Database& database() { return *database_; }

 private:
  std::filesystem::path folder_;
  std::unique_ptr<Database> database_;
};

// Shared by all, because creating it takes a second.
Database& yearOfHistory() {
  static YearOfHistory history;
  return history.database();
}

Date yesterday() {
  return kCalendar.dayBefore(SystemClock().now());
}

void parseDurations(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(parseDuration("about 1h 30m"));
}
BENCHMARK(parseDurations);

void decodeRequest(benchmark::State& state) {
  const json::PaddedString message(
      R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":)"
      R"({"name":"get_activities","arguments":{"date":"2025-03-04","limit":10}}})");
  for (auto _ : state) benchmark::DoNotOptimize(JSONRPCRequest::decode(message.view()));
}
BENCHMARK(decodeRequest);

void parseJson(benchmark::State& state) {
  const json::PaddedString text(encode(MCPToolsListResult{MCPServer::availableTools()}));
  for (auto _ : state) benchmark::DoNotOptimize(json::parse(text.view()));
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(text.view().text().size()));
}
BENCHMARK(parseJson);

void writeCatalogue(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(encode(MCPToolsListResult{MCPServer::availableTools()}));
  }
}
BENCHMARK(writeCatalogue);

void writeReportAsJson(benchmark::State& state) {
  const std::string report = formatActivities(yearOfHistory().searchActivities("", state.range(0)));
  for (auto _ : state) {
    std::string out;
    json::appendString(out, report);
    benchmark::DoNotOptimize(out);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(report.size()));
}
BENCHMARK(writeReportAsJson)->Arg(100)->Arg(100'000);

void makeActivityReport(benchmark::State& state) {
  const std::vector<Activity> activities = yearOfHistory().searchActivities("", state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(formatActivities(activities));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(makeActivityReport)->Arg(100)->Arg(100'000);

void fetchActivities(benchmark::State& state) {
  const Date day = yesterday();
  for (auto _ : state) benchmark::DoNotOptimize(yearOfHistory().fetchActivities(day, 100));
}
BENCHMARK(fetchActivities);

void fetchAnnotations(benchmark::State& state) {
  const Date day = yesterday();
  for (auto _ : state) benchmark::DoNotOptimize(yearOfHistory().fetchAnnotations(day, 100));
}
BENCHMARK(fetchAnnotations);

void searchWithoutAMatch(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(yearOfHistory().searchActivities("no such words", 50));
}
BENCHMARK(searchWithoutAMatch);

void appUsage(benchmark::State& state) {
  const Date day = yesterday();
  for (auto _ : state) benchmark::DoNotOptimize(yearOfHistory().appUsage(day));
}
BENCHMARK(appUsage);

}  // namespace
}  // namespace tessum

BENCHMARK_MAIN();
