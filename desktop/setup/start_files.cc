#include "desktop/setup/start_files.h"

#include <algorithm>
#include <optional>

#include "tessum_shipped_files.h"

namespace tessum {
namespace {

// `text`, which holds `part`, with `part` replaced.
std::string replaced(std::string_view text, std::string_view part, const std::string& by) {
  std::string result(text);
  result.replace(result.find(part), part.size(), by);
  return result;
}

// `text` with an escape before each character of `special`.
std::string withEscapes(std::string_view text, std::string_view special, std::string_view escape) {
  std::string result;
  for (const char character : text) {
    if (special.find(character) != std::string_view::npos) result += escape;
    result += character;
  }
  return result;
}

// `text` with each character of `special` doubled.
std::string doubled(std::string_view text, std::string_view special) {
  std::string result;
  for (const char character : text) {
    if (special.find(character) != std::string_view::npos) result += character;
    result += character;
  }
  return result;
}

// Quotes are needed for few paths, and without them the file is one that a person would write.
bool isPlain(std::string_view path) {
  return path.find_first_not_of(
             "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
             "/._-+@") == std::string_view::npos;
}

// As the first word of an Exec key. Values of the type string have their own escapes, which double
// the backslashes of the command's.
std::string execWord(const std::string& program) {
  if (isPlain(program)) return program;
  const std::string quoted = "\"" + withEscapes(doubled(program, "%"), "\"`$\\", "\\") + "\"";
  return doubled(quoted, "\\");
}

// As the first word of ExecStart: quoted as in C, with systemd's own characters doubled.
std::string execStartWord(const std::string& program) {
  if (isPlain(program)) return program;
  return "\"" + withEscapes(doubled(program, "%$"), "\"\\", "\\") + "\"";
}

std::string xmlText(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character == '&') {
      result += "&amp;";
    } else if (character == '<') {
      result += "&lt;";
    } else {
      result += character;
    }
  }
  return result;
}

// The value of `key` on a line of its own; absent when there is none.
std::optional<std::string_view> valueIn(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.starts_with(key)) continue;
    line.remove_prefix(key.size());
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (!line.starts_with('=')) continue;
    line.remove_prefix(1);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    return line;
  }
  return std::nullopt;
}

}  // namespace

std::string unitFor(const std::string& program) {
  return replaced(kRecordUnit, "ExecStart=Tessum", "ExecStart=" + execStartWord(program));
}

std::string entryFor(const std::string& program) {
  return replaced(kRecordEntry, "Exec=Tessum", "Exec=" + execWord(program));
}

std::string windowsEntryFor(const std::string& program) {
  return replaced(kWindowsEntry, "Exec=/usr/bin/Tessum", "Exec=" + execWord(program));
}

std::string agentFor(const std::string& program) {
  return replaced(kRecordAgent,
                  "@CMAKE_INSTALL_PREFIX@/Applications/Tessum.app/Contents/MacOS/Tessum",
                  xmlText(program));
}

std::string startCommand(std::string_view text, std::string_view key) {
  const auto value = valueIn(text, key);
  if (!value || value->empty()) return "";
  const bool isQuoted = value->front() == '"';
  std::string word;
  for (std::size_t i = isQuoted ? 1 : 0; i < value->size(); ++i) {
    const char character = (*value)[i];
    if (character == (isQuoted ? '"' : ' ')) break;
    const bool isDoubled = (character == '%' || character == '$') && i + 1 < value->size() &&
                           (*value)[i + 1] == character;
    if (isDoubled) ++i;
    word += character;
  }
  return word;
}

bool isTurnedOffEntry(std::string_view text) {
  return valueIn(text, "Hidden") == "true" || valueIn(text, "X-GNOME-Autostart-enabled") == "false";
}

}  // namespace tessum
