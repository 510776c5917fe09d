#include "desktop/clients/edit/text_difference.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tessum {
namespace {

using Lines = std::vector<std::string_view>;  // each with its line feed, but perhaps for the last

constexpr std::size_t kContext = 3;

Lines linesOf(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    const std::size_t size = end == std::string_view::npos ? text.size() : end + 1;
    lines.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return lines;
}

void append(std::string& out, char mark, const Lines& lines, std::size_t begin, std::size_t end) {
  for (std::size_t i = begin; i < end; ++i) {
    out += mark;
    out += lines[i];
    if (!lines[i].ends_with('\n')) out += "\n\\ No newline at end of file\n";
  }
}

// The position and the number of a hunk's lines; an empty one is behind the line that it names.
std::string span(std::size_t begin, std::size_t end) {
  return std::to_string(begin == end ? begin : begin + 1) + "," + std::to_string(end - begin);
}

}  // namespace

std::string textDifference(const std::string& path, const std::optional<std::string>& before,
                           const std::optional<std::string>& after) {
  if (before == after) return "";
  const Lines old = linesOf(before ? *before : std::string_view());
  const Lines now = linesOf(after ? *after : std::string_view());
  const std::size_t shorter = std::min(old.size(), now.size());
  std::size_t head = 0;
  while (head < shorter && old[head] == now[head]) ++head;
  std::size_t tail = 0;
  while (tail < shorter - head && old[old.size() - 1 - tail] == now[now.size() - 1 - tail]) ++tail;

  const std::size_t begin = head - std::min(head, kContext);
  const std::size_t context = std::min(tail, kContext);
  const std::size_t oldEnd = old.size() - tail;
  const std::size_t nowEnd = now.size() - tail;
  std::string out = "--- " + (before ? path : "/dev/null") + "\n+++ " +
                    (after ? path : "/dev/null") + "\n@@ -" + span(begin, oldEnd + context) + " +" +
                    span(begin, nowEnd + context) + " @@\n";
  append(out, ' ', old, begin, head);
  append(out, '-', old, head, oldEnd);
  append(out, '+', now, head, nowEnd);
  append(out, ' ', old, oldEnd, oldEnd + context);
  return out;
}

}  // namespace tessum
