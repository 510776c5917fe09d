// The program's standard output and input, as the commands use them.

#pragma once

#include <string>
#include <string_view>

#include "desktop/reports/text_layout.h"

namespace tessum {

// Standard output as paper: on a terminal as wide as that, with colour unless the user's variable
// NO_COLOR is set or the terminal has none; otherwise endless and plain.
[[nodiscard]] Paper standardOutputPaper();

// Writes `text` to standard output, all of it, before returning. Throws std::system_error.
void print(std::string_view text);

// The same, but on a terminal with the lines made printable: what is printed may be a title, which
// could move the cursor or give the terminal commands. Throws
// std::system_error.
void printForeign(std::string_view text);

// Where standard output is a file of the user, takes the rights to it from everyone else.
void closeOutputToOthers();

// Asks `question` and reads a line from standard input: whether it says yes. The end of the input
// says no.
[[nodiscard]] bool askYesOrNo(const std::string& question);

}  // namespace tessum
