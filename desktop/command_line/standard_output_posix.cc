#include "desktop/command_line/standard_output.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include "core/base/text.h"

namespace tessum {
namespace {

// Whether the user's locale has UTF-8. It need not be installed here: over the network it is often
// that of another computer, where the terminal is.
bool isUtf8Locale() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    const std::string locale = lowerCaseAscii(value);
    return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
  }
  return false;
}

}  // namespace

Paper standardOutputPaper() {
  const bool isAscii = !isUtf8Locale();
  if (isatty(STDOUT_FILENO) == 0) return {.isAscii = isAscii};
  constexpr std::size_t kUsualColumns = 80;
  winsize size{};
  const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool isPlain = (noColour != nullptr && *noColour != '\0') || terminal == nullptr ||
                       std::string_view(terminal) == "dumb";
  return {
      .columns = isKnown ? size.ws_col : kUsualColumns, .hasColour = !isPlain, .isAscii = isAscii};
}

void print(std::string_view text) {
  errno = 0;
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!isWritten || std::fflush(stdout) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
  }
}

void printForeign(std::string_view text) {
  print(isatty(STDOUT_FILENO) != 0 ? printableLines(validUtf8(text)) : std::string(text));
}

void complain(std::string_view text) {
  std::fprintf(stderr, "Tessum: %.*s", static_cast<int>(text.size()), text.data());
}

void showProgress(std::string_view text) {
  if (isatty(STDERR_FILENO) == 0) return;
  constexpr std::string_view kEraseLine = "\r\033[K";
  std::fprintf(stderr, "%.*s%.*s", static_cast<int>(kEraseLine.size()), kEraseLine.data(),
               static_cast<int>(text.size()), text.data());
}

void closeOutputToOthers() {
  struct stat output {};
  if (fstat(STDOUT_FILENO, &output) != 0 || !S_ISREG(output.st_mode)) return;
  fchmod(STDOUT_FILENO, output.st_mode & S_IRWXU);  // which fails for a file of somebody else
}

Answer answerTo(const std::string& question) {
  print(question + " [y/N] ");
  std::string answer;
  if (!std::getline(std::cin, answer)) return Answer::none;
  const bool isYes = answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
  return isYes ? Answer::yes : Answer::no;
}

bool askYesOrNo(const std::string& question) {
  return answerTo(question) == Answer::yes;
}

}  // namespace tessum
