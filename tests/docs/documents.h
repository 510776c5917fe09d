// The documents of the project and the commands that they show.

#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace tessum {

struct Command {
  std::string line;
  std::string output = {};
  bool showsOutput = false;
};

// A document, its commands, and any problems in finding them.
struct Document {
  std::string name;
  std::vector<Command> commands = {};
  std::vector<std::string> problems = {};
};

void PrintTo(const Document& document, std::ostream* out);

// The README, docs/, the manual pages and the help of each command.
[[nodiscard]] std::vector<Document> allDocuments();

// The commands of the host program, as its help lists them.
[[nodiscard]] std::vector<std::string> commandNames();

// The root of the project's sources.
[[nodiscard]] std::filesystem::path sourceFolder();

}  // namespace tessum
