#include "desktop/data/csv.h"

#include <cmath>

#include "core/json/number.h"

namespace tessum {
namespace {

bool isFormula(std::string_view text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

std::string csvField(std::string_view text, bool isRaw) {
  const std::string before = !isRaw && isFormula(text) ? "'" : "";
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return before + std::string(text);
  std::string field = "\"" + before;
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + '"';
}

}  // namespace

std::string csvLine(const std::vector<std::string>& fields, bool isRaw) {
  std::string line;
  for (const std::string& field : fields) {
    if (&field != &fields.front()) line += ',';
    line += csvField(field, isRaw);
  }
  return line + "\r\n";
}

std::string secondsText(double seconds) {
  return json::numberText(std::round(seconds * 1000) / 1000);
}

}  // namespace tessum
