// Pieces of HTML and SVG.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// `text` as HTML shows it, in text and in attributes alike. It is made printable: a title must not
// change the direction of what stands beside it.
[[nodiscard]] std::string escaped(std::string_view text);

// The same for a text of several lines, which stay apart.
[[nodiscard]] std::string escapedLines(std::string_view text);

// `value` with one decimal at most.
[[nodiscard]] std::string decimal(double value);

// An attribute with a measure, such as ` x="12.5"`.
[[nodiscard]] std::string measure(const char* name, double value);

// The attributes of a rectangle.
[[nodiscard]] std::string box(double x, double y, double width, double height);

// A line of text in a drawing.
[[nodiscard]] std::string label(double x, double y, const char* style, std::string_view content);

// A straight line.
[[nodiscard]] std::string line(const char* style, double x1, double y1, double x2, double y2);

}  // namespace tessum
