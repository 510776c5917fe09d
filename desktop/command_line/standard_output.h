// The commands' access to standard output, error and input.

#pragma once

#include <string>
#include <string_view>

#include "desktop/text/text_layout.h"

namespace tessum {

// Standard output as paper: a terminal's width, with colour unless NO_COLOR is set or the terminal
// has none; otherwise unlimited and plain. In ASCII unless the user's locale has UTF-8.
[[nodiscard]] Paper standardOutputPaper();

// Writes `text` to standard output, all of it, before returning. Throws std::system_error.
void print(std::string_view text);

// The same, but on a terminal with the lines made printable: what is printed may be a title, which
// could move the cursor or give the terminal commands. Throws
// std::system_error.
void printForeign(std::string_view text);

// Writes `text` to standard error, behind the program's name.
void complain(std::string_view text);

// Overwrites the current line of standard error with `text` where it is a terminal.
void showProgress(std::string_view text);

// Where standard output is a file of the user, closes it to everyone else.
void closeOutputToOthers();

enum class Answer { yes, no, none };

// Prints `question` and reads a line from standard input: no unless it says yes, none at the end of
// input.
[[nodiscard]] Answer answerTo(const std::string& question);

// The same where the end of input means no. Returns whether the answer is yes.
[[nodiscard]] bool askYesOrNo(const std::string& question);

}  // namespace tessum
