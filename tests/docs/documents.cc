#include "tests/docs/documents.h"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

#include "tests/desktop/user.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

// A "sh" block holds commands, a "console" block commands after "$ " and their output; a line that
// ends in a backslash continues in the next one. Other blocks hold no commands, so each must name
// its language.
Document readMarkdown(const fs::path& path) {
  Document document{path.filename().string()};
  std::string language;
  bool isInFence = false;
  bool goesOn = false;
  std::string before;
  for (const std::string& line : linesOf(readFile(path.string()))) {
    if (line.starts_with("```")) {
      isInFence = !isInFence;
      language = line.substr(3);
      goesOn = false;
      if (isInFence && language.empty()) {
        document.problems.push_back("a block that does not say what it holds");
      }
      continue;
    }
    if (!isInFence) {
      if (line.starts_with("    ") && before.empty()) {
        document.problems.push_back("a block without fences: " + line);
      }
      before = line;
      continue;
    }
    const bool isConsole = language == "console";
    if (!isConsole && language != "sh") continue;
    if (goesOn) {
      document.commands.back().line += "\n" + line;
    } else if (isConsole && line.starts_with("$ ")) {
      document.commands.push_back({.line = line.substr(2), .showsOutput = true});
    } else if (isConsole) {
      document.commands.back().output += line + "\n";
    } else if (!line.empty() && !line.starts_with("#")) {
      document.commands.push_back({.line = line});
    }
    goesOn = line.ends_with('\\');
  }
  return document;
}

// A manual page's examples are between .nf and .fi.
Document readManual(const fs::path& path) {
  Document document{path.filename().string()};
  bool isExample = false;
  for (std::string line : linesOf(readFile(path.string()))) {
    if (line == ".nf" || line == ".fi") {
      isExample = line == ".nf";
      continue;
    }
    line.erase(std::remove(line.begin(), line.end(), '\\'), line.end());
    if (isExample) document.commands.push_back({.line = line});
  }
  return document;
}

// The examples at the end of each command's own help.
std::vector<Document> readHelp() {
  std::vector<Document> documents;
  const User user;
  for (const std::string& name : commandNames()) {
    Document document{"help of " + name};
    for (const std::string& text : linesOf(user.run({name, "--help"}).output)) {
      if (text.starts_with("  Tessum ")) document.commands.push_back({.line = text.substr(2)});
    }
    documents.push_back(document);
  }
  return documents;
}

}  // namespace

void PrintTo(const Document& document, std::ostream* out) {
  *out << document.name;
}

std::vector<Document> allDocuments() {
  const fs::path root = sourceFolder();
  std::vector<Document> documents{readMarkdown(root / "README.md")};
  for (const auto& entry : fs::directory_iterator(root / "docs")) {
    if (entry.path().extension() == ".md") documents.push_back(readMarkdown(entry.path()));
  }
  for (const auto& entry : fs::directory_iterator(root / "packaging/man")) {
    documents.push_back(readManual(entry.path()));
  }
  for (Document& help : readHelp()) documents.push_back(std::move(help));
  return documents;
}

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  bool isList = false;
  for (const std::string& line : linesOf(User().run({"--help"}).output)) {
    if (isList && line.starts_with("  ") && line[2] != ' ') {
      names.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
    if (line == "Subcommands:") isList = true;
  }
  return names;
}

fs::path sourceFolder() {
  return TESSUM_SOURCE_FOLDER;
}

}  // namespace tessum
