// What concerns the command line as a whole: words that name no command, and help.

#pragma once

#include <string>

namespace CLI {
class App;
class ExtrasError;
}  // namespace CLI

namespace tessum {

// Adds the command "help", which explains the commands of `app`; both live equally long.
void addHelpCommand(CLI::App& app);

// Throws CLI::ValidationError where a command of `app` is expected and there is no word, a word
// that names none, or, before any command, an unknown option; a likely one is suggested. Nothing
// has been parsed yet.
void requireKnownCommands(const CLI::App& app, int count, const char* const* words);

// What is wrong with a command line that `app` has parsed up to its end: the arguments that nothing
// takes, with a suggestion for an option among them.
[[nodiscard]] std::string unexpectedText(const CLI::App& app, const CLI::ExtrasError& error);

}  // namespace tessum
