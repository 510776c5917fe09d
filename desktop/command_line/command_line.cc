#include "desktop/command_line/command_line.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string_view>
#include <vector>

#include "core/base/text.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/settings/suggestion.h"

namespace tessum {
namespace {

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

// The one that `word` names; null where there is none.
const CLI::App* findCommand(const CLI::App& app, const std::string& word) {
  for (const CLI::App* command : commandsOf(app)) {
    if (command->check_name(word)) return command;
  }
  return nullptr;
}

// The same, or an error; `before` are the words that led to `app`.
const CLI::App& commandArgument(const CLI::App& app, const std::string& before,
                                const std::string& word) {
  if (const CLI::App* command = findCommand(app, word)) return *command;
  std::vector<std::string> names;
  for (const CLI::App* command : commandsOf(app)) {
    if (!command->get_group().empty()) names.push_back(command->get_name());
  }
  throw CLI::ValidationError("there is no command \"" + before + word + "\"" +
                             suggestion(lowerCaseAscii(word), {names.begin(), names.end()}));
}

std::vector<std::string> optionsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

bool takesPositionals(const CLI::App& app) {
  return !app.get_options([](const CLI::Option* option) { return option->get_positional(); })
              .empty();
}

void explain(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* command = &app;
  std::string name = app.get_name();
  std::string before;
  for (const std::string& word : words) {
    command = &commandArgument(*command, before, word);
    name += " " + word;
    before += word + " ";
  }
  print(app.get_formatter()->make_help(command, name, CLI::AppFormatMode::Normal));
}

}  // namespace

void addHelpCommand(CLI::App& app) {
  auto* command = app.add_subcommand("help", "Explain the commands, or one of them");
  const auto words = std::make_shared<std::vector<std::string>>();
  command->add_option("COMMAND", *words, "the command to explain")->type_name("");
  command->footer(
      "Examples:\n"
      "  Tessum help\n"
      "  Tessum help usage\n"
      "  Tessum help settings try");
  command->callback([&app, words] { explain(app, *words); });
}

void requireKnownCommands(const CLI::App& app, int count, const char* const* words) {
  if (count < 2) throw CLI::ValidationError("say which command; \"Tessum help\" lists them");
  // Of an option in the place of a command the parser would only say that the command is missing.
  const std::string first = words[1];
  if (first.starts_with('-') && app.get_option_no_throw(first) == nullptr) {
    const auto options = optionsOf(app);
    throw CLI::ValidationError("there is no option \"" + first + "\" before a command" +
                               suggestion(first, {options.begin(), options.end()}));
  }
  const CLI::App* command = &app;
  std::string before;
  for (int i = 1; i < count && *words[i] != '-'; ++i) {
    if (commandsOf(*command).empty() || takesPositionals(*command)) return;
    command = &commandArgument(*command, before, words[i]);
    before += words[i] + std::string(" ");
  }
}

std::string unexpectedText(const CLI::App& app, const CLI::ExtrasError& error) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
  const auto names = optionsOf(*command);
  for (const std::string& argument : app.remaining(true)) {
    if (!argument.starts_with("--")) continue;
    return error.what() +
           suggestion(argument.substr(0, argument.find('=')), {names.begin(), names.end()});
  }
  return error.what();
}

}  // namespace tessum
