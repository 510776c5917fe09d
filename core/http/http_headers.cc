#include "core/http/http_headers.h"

#include <algorithm>

#include "core/base/text.h"

namespace tessum {

std::vector<std::string_view> headerValues(std::string_view head, std::string_view name) {
  constexpr std::string_view kLineEnd = "\r\n";
  std::vector<std::string_view> values;
  std::size_t lineEnd = std::min(head.find(kLineEnd), head.size());
  while (lineEnd < head.size()) {
    const std::size_t start = lineEnd + kLineEnd.size();
    lineEnd = std::min(head.find(kLineEnd, start), head.size());
    const std::string_view line = head.substr(start, lineEnd - start);
    // No letter outside ASCII turns into one of a name in lower case.
    if (lowerCaseAscii(line.substr(0, name.size())) != name) continue;
    values.push_back(trimBlanks(line.substr(name.size())));
  }
  return values;
}

}  // namespace tessum
