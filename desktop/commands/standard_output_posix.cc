#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include "core/base/text.h"
#include "desktop/commands/standard_output.h"

namespace tessum {

Paper standardOutputPaper() {
  if (isatty(STDOUT_FILENO) == 0) return {};
  constexpr std::size_t kUsualColumns = 80;
  winsize size{};
  const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool isPlain = (noColour != nullptr && *noColour != '\0') || terminal == nullptr ||
                       std::string_view(terminal) == "dumb";
  return {.columns = isKnown ? size.ws_col : kUsualColumns, .hasColour = !isPlain};
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
