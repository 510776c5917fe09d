#include "desktop/text/text_layout.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <utility>

#include "core/base/text.h"

namespace tessum {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Marks, joiners and selectors, ordered by code point.
constexpr Range kNarrowest[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x0900, 0x0902}, {0x093C, 0x093C}, {0x0941, 0x0948}, {0x094D, 0x094D}, {0x0E31, 0x0E31},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
    {0x2060, 0x2064}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF},
};

// East Asian wide and fullwidth characters and pictographs, ordered by code point.
constexpr Range kWidest[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x23E9, 0x23EC},   {0x23F0, 0x23F0},
    {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},   {0x2648, 0x2653},
    {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},   {0x26AA, 0x26AB},
    {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},   {0x26D4, 0x26D4},
    {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},   {0x26FA, 0x26FA},
    {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},   {0x2728, 0x2728},
    {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},   {0x2757, 0x2757},
    {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},   {0x2B1B, 0x2B1C},
    {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},   {0x3041, 0x4DBF},
    {0x4E00, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
    {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x1F004, 0x1F004},
    {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A}, {0x1F200, 0x1F265},
    {0x1F300, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393},
    {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4},
    {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D},
    {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567}, {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4},
    {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5}, {0x1F6D0, 0x1F6D2}, {0x1F6EB, 0x1F6EC},
    {0x1F6F4, 0x1F6FC}, {0x1F7E0, 0x1F7EB}, {0x1F90C, 0x1F9FF}, {0x1FA70, 0x1FAFF},
    {0x20000, 0x3FFFD},
};

template <std::size_t size>
bool contains(const Range (&ranges)[size], char32_t character) {
  const auto range = std::upper_bound(std::begin(ranges), std::end(ranges), character,
                                      [](char32_t c, const Range& r) { return c <= r.last; });
  return range != std::end(ranges) && character >= range->first;
}

std::size_t widthOf(char32_t character) {
  if (character < kNarrowest[0].first) return 1;
  if (contains(kNarrowest, character)) return 0;
  return contains(kWidest, character) ? 2 : 1;
}

struct Character {
  char32_t codePoint;
  std::string_view bytes;
};

// The first character of `text`, which is valid UTF-8 and not empty.
Character firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {lead, text.substr(0, 1)};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  char32_t codePoint = lead & (0xFFU >> (length + 1));
  for (const char byte : text.substr(1, length - 1)) {
    codePoint = codePoint << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return {codePoint, text.substr(0, length)};
}

bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
}

bool turnsDirection(char32_t c) {
  return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x200E ||
         c == 0x200F || c == 0x061C;
}

// As much of `text` from its front as `columns` hold.
std::string_view beginning(std::string_view text, std::size_t columns) {
  std::string_view rest = text;
  std::size_t width = 0;
  while (!rest.empty()) {
    const Character character = firstCharacter(rest);
    width += widthOf(character.codePoint);
    if (width > columns) break;
    rest.remove_prefix(character.bytes.size());
  }
  return text.substr(0, text.size() - rest.size());
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    width += widthOf(character.codePoint);
    text.remove_prefix(character.bytes.size());
  }
  return width;
}

std::string printable(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    const char32_t c = character.codePoint;
    const bool isBreak = (c >= '\t' && c <= '\r') || c == 0x85 || c == 0x2028 || c == 0x2029;
    if (isBreak) {
      out += ' ';
    } else if (isControl(c) || turnsDirection(c)) {
      out += "\xEF\xBF\xBD";
    } else {
      out += character.bytes;
    }
    text.remove_prefix(character.bytes.size());
  }
  return out;
}

std::string printableLines(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    out += printable(line);
    if (end < text.size()) out += '\n';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

std::string shortened(std::string_view text, std::size_t columns, const Paper& paper) {
  if (displayWidth(text) <= columns) return std::string(text);
  const std::string_view ellipsis = paper.isAscii ? "..." : "…";
  const std::size_t room = columns - std::min(columns, displayWidth(ellipsis));
  if (room == 0) return std::string(columns, '.');
  std::string out;
  std::size_t width = 0;
  while (true) {
    const Character character = firstCharacter(text);
    width += widthOf(character.codePoint);
    if (width > room) break;
    out += character.bytes;
    text.remove_prefix(character.bytes.size());
  }
  return out.append(ellipsis);
}

std::string inQuotes(std::string_view text) {
  constexpr std::size_t kColumns = 40;
  return "\"" + shortened(printable(validUtf8(text)), kColumns) + "\"";
}

std::vector<std::string> wrapped(std::string_view text, std::size_t columns) {
  std::vector<std::string> lines(1);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t gap = lines.back().empty() ? 0 : 1;
    if (displayWidth(lines.back()) + gap + displayWidth(word) <= columns) {
      lines.back().append(gap, ' ') += word;
      continue;
    }
    if (gap > 0) lines.emplace_back();
    while (displayWidth(word) > columns && word.find('/') == std::string_view::npos) {
      const std::string_view part = beginning(word, std::max<std::size_t>(columns, 2));
      lines.back() = part;
      lines.emplace_back();
      word.remove_prefix(part.size());
    }
    lines.back() = word;
  }
  return lines;
}

std::string paragraph(std::string_view text, const Paper& paper) {
  if (paper.columns == 0) return std::string(text) + "\n";
  std::string lines;
  for (const std::string& line : wrapped(text, paper.columns)) lines += line + "\n";
  return lines;
}

std::string heading(const std::string& title, const std::string& rest, const Paper& paper) {
  const std::string gap = rest.empty() ? "" : "  ";
  if (paper.columns == 0 || displayWidth(title + gap + rest) <= paper.columns) {
    return toned(title, Tone::strong, paper) + gap + rest + "\n";
  }
  return toned(paragraph(title, paper), Tone::strong, paper) +
         (rest.empty() ? "" : paragraph(rest, paper));
}

std::string bar(double share, std::size_t columns, const Paper& paper) {
  // Parts of a column, the whole one last.
  constexpr std::string_view kBlocks[] = {"▏", "▎", "▍", "▌", "▋", "▊", "▉", "█"};
  constexpr std::string_view kAscii[] = {"-", "="};
  const std::span<const std::string_view> parts =
      paper.isAscii ? std::span<const std::string_view>(kAscii) : kBlocks;
  const double all = static_cast<double>(columns * parts.size());
  auto length = static_cast<std::size_t>(std::lround(std::clamp(share, 0.0, 1.0) * all));
  if (share > 0 && columns > 0) length = std::max<std::size_t>(length, 1);
  std::string out;
  for (; length >= parts.size(); length -= parts.size()) out += parts.back();
  if (length > 0) out += parts[length - 1];
  return out;
}

std::string toned(std::string_view text, Tone tone, const Paper& paper) {
  if (!paper.hasColour || tone == Tone::plain || text.empty()) return std::string(text);
  const char* begin = "";
  switch (tone) {
    case Tone::plain:
      break;
    case Tone::strong:
      begin = "\x1b[1m";
      break;
    case Tone::faint:
      begin = "\x1b[2m";
      break;
    case Tone::accent:
      begin = "\x1b[36m";
      break;
    case Tone::good:
      begin = "\x1b[32m";
      break;
    case Tone::bad:
      begin = "\x1b[31m";
      break;
  }
  return begin + std::string(text) + "\x1b[0m";
}

}  // namespace tessum
