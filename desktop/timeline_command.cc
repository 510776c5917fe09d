#include "desktop/timeline_command.h"

#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

#include "desktop/arguments.h"
#include "desktop/day_report.h"
#include "desktop/record.h"
#include "desktop/standard_output.h"
#include "desktop/timeline.h"

namespace tessum {
namespace {

struct TimelineOptions {
  std::string day;
  std::string file;
};

// The page is for the user alone: it holds every title of the day.
void writePage(const std::string& path, const std::string& page) {
  const mode_t before = umask(S_IRWXG | S_IRWXO);
  errno = 0;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  umask(before);
  out << page;
  if (!out.flush()) throw std::system_error(errno, std::generic_category(), "cannot write " + path);
}

void showTimeline(const Host& host, const TimelineOptions& options) {
  const Date day = dayArgument(options.day, host);
  Record record(recordPath(host.locations), Record::Access::read);
  const std::string page = timelinePage(readDay(record, host, day));
  if (!options.file.empty()) {
    writePage(options.file, page);
    print("The timeline is in " + options.file + ".\n");
    return;
  }
  const std::string path = host.locations.dataFolder() + "/timeline.html";
  writePage(path, page);
  print("The timeline is in " + path + ".\n");
}

}  // namespace

void addTimelineCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("timeline", "A picture of a day, in your browser");
  const auto options = std::make_shared<TimelineOptions>();
  addDayArgument(*command, options->day);
  command
      ->add_option("-o,--output", options->file,
                   "write the page to this file instead of opening it")
      ->type_name("FILE");
  command->footer(
      "Examples:\n"
      "  Tessum timeline\n"
      "  Tessum timeline yesterday\n"
      "  Tessum timeline 2025-03-04 -o tuesday.html");
  command->callback([&host, options] { showTimeline(host, *options); });
}

}  // namespace tessum
