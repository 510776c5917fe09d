#include <CLI/CLI.hpp>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/base/text.h"
#include "core/platform/private_files.h"
#include "core/store/database.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/import/export_file.h"
#include "desktop/import/importer.h"
#include "desktop/import/json_pieces.h"
#include "desktop/settings/hidden_sessions.h"
#include "desktop/settings/settings_file.h"

namespace tessum {
namespace {

struct ImportOptions {
  std::vector<std::string> paths;
  bool isTrial = false;
};

struct Source {
  std::string path;
  std::unique_ptr<ExportFile> file;
};

// What became of the events of a file, besides what the importer counts.
struct Lost {
  std::int64_t broken = 0;
  std::int64_t away = 0;
  std::int64_t hidden = 0;
};

std::runtime_error refusal(const std::string& path, const BrokenFile& error) {
  return std::runtime_error(printable(validUtf8(path)) + " cannot be imported: " + error.what());
}

// Looks through all files before any of them is imported.
std::vector<Source> sourcesOf(const ImportOptions& options, const Settings& settings) {
  std::vector<Source> sources;
  for (const std::string& path : options.paths) {
    try {
      sources.push_back({path, openExport(path, settings.awayAfter.value.seconds)});
    } catch (const BrokenFile& error) {
      throw refusal(path, error);
    }
  }
  return sources;
}

// Null where there is no history yet, and there need be none.
std::unique_ptr<History> openHistory(const Host& host, bool isTrial) {
  const std::string path = historyPath(host.locations);
  if (!isTrial) {
    createPrivateFolders(host.locations.dataFolder());
    const Database made(path, host.calendar);
  }
  try {
    return std::make_unique<History>(path,
                                     isTrial ? History::Access::read : History::Access::write);
  } catch (const NoHistory&) {
    return nullptr;  // a trial makes none
  }
}

std::string countsText(const ImportCounts& counts, const Lost& lost, bool isTrial) {
  std::string text = counted(counts.sessions, "session");
  if (counts.notes > 0) text += " and " + counted(counts.notes, "note");
  text += isTrial ? " would be added" : " added";
  const auto add = [&](std::int64_t count, const std::string& what) {
    if (count > 0) text += ", " + std::to_string(count) + " " + what;
  };
  add(counts.known, "there already");
  add(lost.broken, "broken and skipped");
  add(lost.away, "while you were away");
  add(lost.hidden, "hidden by your settings");
  return text + ".\n";
}

Lost importSource(Source& source, Importer& importer, const Settings& settings) {
  Lost lost;
  const ImportVisitor visitor{.session =
                                  [&](const Activity& session) {
                                    const auto left = leftOf(session, settings.rules.hide);
                                    if (left.empty()) lost.hidden += 1;
                                    for (const Activity& part : left) importer.add(part);
                                  },
                              .note = [&](const Annotation& note) { importer.add(note); },
                              .broken = [&] { lost.broken += 1; },
                              .away = [&] { lost.away += 1; }};
  try {
    source.file->visit(visitor);
  } catch (const BrokenFile& error) {
    throw refusal(source.path, error);
  }
  return lost;
}

void importFiles(const Host& host, const ImportOptions& options) {
  const Settings settings = loadSettings(host.locations, host.files);
  auto sources = sourcesOf(options, settings);
  const auto history = openHistory(host, options.isTrial);
  Importer importer(history.get(), options.isTrial,
                    [](std::int64_t records) { showProgress(counted(records, "record")); });
  for (Source& source : sources) {
    const Lost lost = importSource(source, importer, settings);
    const ImportCounts counts = importer.finish();
    showProgress("");
    print(printable(validUtf8(source.path)) + ": " + countsText(counts, lost, options.isTrial));
  }
}

}  // namespace

void addImportCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("import", "Take in the history of another program");
  const auto options = std::make_shared<ImportOptions>();
  command->add_option("FILE", options->paths, "files that were exported")
      ->type_name("")
      ->required();
  command->add_flag("--dry-run", options->isTrial, "only count what would be added");
  command->footer(
      "It reads the JSON that ActivityWatch exports (windows, without the times away from the\n"
      "computer), that \"arbtt-dump -t JSON\" prints, and that \"Tessum export --format json\"\n"
      "writes. A session that is there already stays as it is: one of the same application and\n"
      "title that begins in the same second. What your settings hide is left out. It can be\n"
      "interrupted and run again.\n\n"
      "Examples:\n"
      "  Tessum import aw-buckets-export.json\n"
      "  Tessum import --dry-run january.json february.json");
  command->callback([&host, options] { importFiles(host, *options); });
}

}  // namespace tessum
