#include "core/base/text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tessum {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Sequence {
  std::size_t length;  // bytes that belong together, at least 1
  bool isValid;
};

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// The first sequence of `bytes`, which begin with a byte that is not ASCII. The range of the second
// byte rules out overlong forms, surrogates and code points above U+10FFFF.
Sequence firstSequence(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(0);
  if (lead < 0xC2 || lead > 0xF4) return {1, false};

  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead == 0xE0) low = 0xA0;
  if (lead == 0xED) high = 0x9F;
  if (lead == 0xF0) low = 0x90;
  if (lead == 0xF4) high = 0x8F;
  if (bytes.size() < 2 || at(1) < low || at(1) > high) return {1, false};

  const std::size_t wanted = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  for (std::size_t i = 2; i < wanted; ++i) {
    if (i == bytes.size() || !isContinuation(at(i))) return {i, false};
  }
  return {wanted, true};
}

// The number of leading ASCII bytes. Tests eight at a time, as nearly all text is ASCII.
std::size_t asciiPrefix(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t at = 0;
  for (std::uint64_t word = 0; at + sizeof word <= bytes.size(); at += sizeof word) {
    std::memcpy(&word, bytes.data() + at, sizeof word);
    if ((word & kHighBits) != 0) break;
  }
  while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80) ++at;
  return at;
}

// White space outside ASCII, as UTF-8.
constexpr std::array<std::string_view, 19> kWideSpaces =
    {
        "\xC2\x85",      // U+0085 next line
        "\xC2\xA0",      // U+00A0 no-break space
        "\xE1\x9A\x80",  // U+1680 Ogham space mark
        "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82", "\xE2\x80\x83",
        "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87",
        "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A",  // U+2000 to U+200A
        "\xE2\x80\xA8", "\xE2\x80\xA9",                  // U+2028 line, U+2029 paragraph separator
        "\xE2\x80\xAF",                                  // U+202F narrow no-break space
        "\xE2\x81\x9F",                                  // U+205F medium mathematical space
        "\xE3\x80\x80",                                  // U+3000 ideographic space
};

bool isAsciiSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

std::size_t leadingSpace(std::string_view text) {
  if (text.empty()) return 0;
  if (isAsciiSpace(text.front())) return 1;
  for (const auto space : kWideSpaces) {
    if (text.starts_with(space)) return space.size();
  }
  return 0;
}

std::size_t trailingSpace(std::string_view text) {
  if (text.empty()) return 0;
  if (isAsciiSpace(text.back())) return 1;
  for (const auto space : kWideSpaces) {
    if (text.ends_with(space)) return space.size();
  }
  return 0;
}

}  // namespace

void appendValidUtf8(std::string& out, std::string_view bytes) {
  std::size_t done = 0;
  std::size_t at = 0;
  while ((at += asciiPrefix(bytes.substr(at))) < bytes.size()) {
    const Sequence sequence = firstSequence(bytes.substr(at));
    if (!sequence.isValid) {
      out.append(bytes.substr(done, at - done));
      out.append(kReplacement);
      done = at + sequence.length;
    }
    at += sequence.length;
  }
  out.append(bytes.substr(done));
}

std::string validUtf8(std::string_view bytes) {
  std::string out;
  appendValidUtf8(out, bytes);
  return out;
}

std::string utf8FromLatin1(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      out += c;
    } else {
      out += static_cast<char>(0xC0U | (byte >> 6U));
      out += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return out;
}

std::string_view trimWhiteSpace(std::string_view text) {
  while (const std::size_t length = leadingSpace(text)) text.remove_prefix(length);
  while (const std::size_t length = trailingSpace(text)) text.remove_suffix(length);
  return text;
}

std::string_view trimBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string lowerCaseAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace tessum
