#include "desktop/timeline/markup.h"

#include <cmath>
#include <cstdlib>

#include "desktop/text/text_layout.h"

namespace tessum {

namespace {

std::string encoded(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

std::string escaped(std::string_view text) {
  return encoded(printable(text));
}

std::string escapedLines(std::string_view text) {
  return encoded(printableLines(text));
}

std::string decimal(double value) {
  const auto tenths = static_cast<long>(std::lround(value * 10));
  std::string text = (tenths < 0 ? "-" : "") + std::to_string(std::abs(tenths) / 10);
  if (tenths % 10 != 0) text += "." + std::to_string(std::abs(tenths % 10));
  return text;
}

std::string measure(const char* name, double value) {
  return " " + std::string(name) + "=\"" + decimal(value) + "\"";
}

std::string box(double x, double y, double width, double height) {
  return measure("x", x) + measure("y", y) + measure("width", width) + measure("height", height);
}

std::string label(double x, double y, const char* style, std::string_view content) {
  return "<text class=\"" + std::string(style) + "\"" + measure("x", x) + measure("y", y) + ">" +
         escaped(content) + "</text>\n";
}

std::string line(const char* style, double x1, double y1, double x2, double y2) {
  return "<line class=\"" + std::string(style) + "\"" + measure("x1", x1) + measure("y1", y1) +
         measure("x2", x2) + measure("y2", y2) + "/>\n";
}

}  // namespace tessum
