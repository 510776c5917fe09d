#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/platform/private_files.h"
#include "core/store/history.h"
#include "core/update/urls.h"
#include "desktop/command_line/arguments.h"
#include "desktop/command_line/filter_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/settings/settings_file.h"
#include "desktop/timeline/page.h"

namespace tessum {
namespace {

struct TimelineOptions {
  std::string period;
  std::string file;
  FilterOptions filter;
};

// A longer period could not be read as a picture, and would be too large for a browser.
constexpr int kMostDays = 366;

std::string pageOf(const Host& host, const TimelineOptions& options) {
  const Settings settings = loadSettings(host.locations, host.files);
  const ReportDays days(host.calendar, settings.dayStarts.value);
  const Period period = periodArgument(options.period, host, days);
  const Date now = host.clock.now();
  const SessionTest isMeant = sessionTestOf(options.filter, settings.rules);
  History history(historyPath(host.locations), History::Access::read);
  if (dayCount(timelinePeriod(history, period, days, now)) > kMostDays) {
    throw CLI::ValidationError("the timeline shows up to a year; " + longPeriodText(period) +
                               " is more");
  }
  TimelineHistory timeline = readTimeline(history, days, settings.rules, period, now, isMeant);
  timeline.narrowing = narrowingText(options.filter);
  return timelinePage(timeline);
}

// A page keeps the rights of the file that it replaces.
void replaceForUserAlone(const Host& host, const std::string& file, const std::string& page) {
  if (std::filesystem::exists(file)) closeToOthers(std::filesystem::canonical(file));
  host.files.replace(file, page);
}

void writePage(const Host& host, const std::string& file, const std::string& page) {
  if (std::filesystem::exists(file) && !std::filesystem::is_regular_file(file)) {
    throw std::runtime_error(file + " is not a file that can be replaced");
  }
  replaceForUserAlone(host, file, page);
  print("The timeline is in " + file + ".\n");
}

void showPage(const Host& host, const std::string& page) {
  const std::string path = timelinePath(host.locations);
  replaceForUserAlone(host, path, page);
  const bool isShown = host.opener.hasOpened(fileUrl(path));
  print("The timeline is in " + path +
        (isShown ? ", and your browser was asked to open it.\n"
                 : ". No browser could be opened; open the file in one yourself.\n"));
}

void showTimeline(const Host& host, const TimelineOptions& options) {
  const std::string page = pageOf(host, options);
  if (options.file.empty()) return showPage(host, page);
  if (options.file != "-") return writePage(host, options.file, page);
  closeOutputToOthers();
  print(page);
}

}  // namespace

void addTimelineCommand(CLI::App& app, Host& host) {
  auto* command =
      app.add_subcommand("timeline", "A picture of up to a year to explore, in your browser");
  const auto options = std::make_shared<TimelineOptions>();
  addPeriodArgument(*command, options->period);
  command
      ->add_option("-o,--output", options->file,
                   "write the page to this file instead of opening it; - is standard output")
      ->type_name("FILE");
  addFilterOptions(*command, options->filter);
  command->footer(
      "Examples:\n"
      "  Tessum timeline\n"
      "  Tessum timeline last-week\n"
      "  Tessum timeline month --app Terminal\n"
      "  Tessum timeline 2025-03-04 -o tuesday.html");
  command->callback([&host, options] { showTimeline(host, *options); });
}

}  // namespace tessum
