#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>

#include "core/base/text.h"
#include "core/platform/private_files.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/data/state_data.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/settings/editor.h"
#include "desktop/settings/pause.h"
#include "desktop/settings/setting_texts.h"
#include "desktop/settings/settings_file.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

std::string lineText(int line) {
  return line == 0 ? "default" : "line " + std::to_string(line);
}

void showSettings(const Host& host, bool isData) {
  const Settings settings = loadSettings(host.locations, host.files);
  const std::string path = settingsPath(host.locations);
  const bool exists = host.files.exists(path);
  if (isData) return printForeign(settingsData(settings, path, exists));
  using enum Table::Alignment;
  Table table({left, left, left});
  for (const SettingLine& setting : settingLines(settings)) {
    table.addRow({{setting.name, Tone::faint},
                  {setting.value, Tone::plain, Table::Fit::whole},
                  {lineText(setting.line), Tone::faint}});
  }
  print(printable(path) + (exists ? "" : ", which does not exist") + "\n\n" +
        table.text(standardOutputPaper()));
}

void check(const Host& host) {
  const Settings settings = loadSettings(host.locations, host.files);
  const std::string path = printable(settingsPath(host.locations));
  if (!host.files.exists(settingsPath(host.locations))) {
    print(path + " does not exist, so the defaults apply.\n");
    return;
  }
  print(path + " is valid: " + counted(settings.rules.hide.size(), "rule") + ", " +
        counted(settings.rules.categories.size(), "category", "categories") + ".\n");
}

void edit(Host& host) {
  const std::string path = settingsPath(host.locations);
  if (!host.files.exists(path)) {
    createPrivateFolders(std::filesystem::path(path).parent_path());
    host.files.replace(path, settingsTemplate());
  }
  if (!editFile(path)) throw std::runtime_error("the editor failed");
  check(host);
}

struct TryOptions {
  std::string app;
  std::string title;
};

// The start of a sentence that says what is recorded of the window.
std::string keptText(Kept kept, const std::string& app, const std::string& title) {
  switch (kept) {
    case Kept::all:
      return "Recorded: " + app + (title.empty() ? "" : " – " + title);
    case Kept::app:
      return "Recorded: " + app + (title.empty() ? "" : ", without the title");
    case Kept::nothing:
      break;
  }
  return "Nothing is recorded";
}

void tryRules(const Host& host, const TryOptions& options) {
  const Settings settings = loadSettings(host.locations, host.files);
  const std::string app = validUtf8(options.app);
  const std::string title = validUtf8(options.title);
  Window window{.app = app, .identifier = std::nullopt, .title = std::nullopt};
  if (!title.empty()) window.title = title;
  const Date now = host.clock.now();
  const Verdict verdict = judge(settings.rules.hide, window, wallTime(now));
  std::string text = keptText(verdict.kept, printable(app), printable(title));
  text += verdict.rule == nullptr ? "; no rule hides it.\n"
                                  : "; " + lineText(verdict.rule->line) +
                                        " decides: " + printable(ruleText(*verdict.rule)) + "\n";
  if (const Category* category = categoryOf(settings.rules, window)) {
    text += "Category: " + printable(category->name) + "; " + lineText(category->line) + "\n";
  }
  if (const auto pause = pauseAt(now, host.locations, host.files)) {
    text += "Nothing at all is recorded " + pauseText(*pause, now) + ".\n";
  }
  print(text);
}

}  // namespace

void addSettingsCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("settings", "Show what is set, and where");
  command->footer(
      "The settings are one file, which need not exist. A running recorder follows it as soon as\n"
      "it is saved.\n\n"
      "Examples:\n"
      "  Tessum settings\n"
      "  Tessum settings --json\n"
      "  Tessum settings edit\n"
      "  Tessum settings check\n"
      "  Tessum settings try Firefox \"News - Private Browsing\"");
  auto* editCommand = command->add_subcommand("edit", "Open the file in the editor of $EDITOR");
  editCommand->callback([&host] { edit(host); });
  auto* checkCommand = command->add_subcommand("check", "Check that the file is valid");
  checkCommand->callback([&host] { check(host); });
  auto* tryCommand =
      command->add_subcommand("try", "Show what would be recorded of a window now, and why");
  const auto options = std::make_shared<TryOptions>();
  tryCommand->add_option("APP", options->app, "the application's name or identifier")
      ->type_name("")
      ->required();
  tryCommand->add_option("TITLE", options->title, "the window's title")->type_name("");
  tryCommand->callback([&host, options] { tryRules(host, *options); });
  command->require_subcommand(0, 1);
  const auto isData = std::make_shared<bool>(false);
  addJsonOption(*command, *isData);
  command->callback([&host, command, isData] {
    if (command->get_subcommands().empty()) return showSettings(host, *isData);
    if (*isData) throw CLI::ValidationError("only the list of the settings is there as JSON");
  });
}

}  // namespace tessum
