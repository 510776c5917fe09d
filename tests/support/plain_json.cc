#include "tests/support/plain_json.h"

#include <cstddef>
#include <cstdint>

namespace tessum::plain_json {
namespace {

constexpr int kMostLevels = 512;

struct NotJson {};

class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  Node document() {
    takeAll("\xEF\xBB\xBF");
    Node node = value(0);
    skipSpace();
    require(rest_.empty());
    return node;
  }

 private:
  static void require(bool condition) {
    if (!condition) throw NotJson();
  }

  [[nodiscard]] char peek() const { return rest_.empty() ? '\0' : rest_.front(); }

  char next() {
    require(!rest_.empty());
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  bool takeAll(std::string_view wanted) {
    if (!rest_.starts_with(wanted)) return false;
    rest_.remove_prefix(wanted.size());
    return true;
  }

  void skipSpace() {
    while (peek() == ' ' || peek() == '\t' || peek() == '\n' || peek() == '\r') next();
  }

  Node value(int levels) {
    skipSpace();
    if (takeAll("null")) return {};
    if (takeAll("true")) return {Kind::boolean, "true", {}, {}};
    if (takeAll("false")) return {Kind::boolean, "false", {}, {}};
    if (peek() == '"') return {Kind::text, text(), {}, {}};
    if (takeAll("[")) return array(levels + 1);
    if (takeAll("{")) return object(levels + 1);
    return number();
  }

  Node array(int levels) {
    require(levels <= kMostLevels);
    Node node{Kind::array, "", {}, {}};
    skipSpace();
    if (takeAll("]")) return node;
    do {
      node.elements.push_back(value(levels));
      skipSpace();
    } while (takeAll(","));
    require(takeAll("]"));
    return node;
  }

  Node object(int levels) {
    require(levels <= kMostLevels);
    Node node{Kind::object, "", {}, {}};
    skipSpace();
    if (takeAll("}")) return node;
    do {
      skipSpace();
      std::string key = text();
      skipSpace();
      require(takeAll(":"));
      node.members[key] = value(levels);
      skipSpace();
    } while (takeAll(","));
    require(takeAll("}"));
    return node;
  }

  std::size_t digits() {
    std::size_t count = 0;
    for (; peek() >= '0' && peek() <= '9'; ++count) next();
    return count;
  }

  Node number() {
    const std::string_view start = rest_;
    takeAll("-");
    const bool isZero = peek() == '0';
    const std::size_t whole = digits();
    require(whole == 1 || (whole > 1 && !isZero));
    if (takeAll(".")) require(digits() > 0);
    if (takeAll("e") || takeAll("E")) {
      if (!takeAll("+")) takeAll("-");
      require(digits() > 0);
    }
    return {Kind::number, std::string(start.substr(0, start.size() - rest_.size())), {}, {}};
  }

  std::uint32_t fourHexDigits() {
    constexpr std::string_view kLower = "0123456789abcdef";
    constexpr std::string_view kUpper = "0123456789ABCDEF";
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = next();
      auto digit = kLower.find(c);
      if (digit == std::string_view::npos) digit = kUpper.find(c);
      require(digit != std::string_view::npos);
      code = code * 16 + static_cast<std::uint32_t>(digit);
    }
    return code;
  }

  static bool isHighSurrogate(std::uint32_t code) { return code >= 0xD800 && code < 0xDC00; }
  static bool isLowSurrogate(std::uint32_t code) { return code >= 0xDC00 && code < 0xE000; }

  std::uint32_t escapedCodePoint() {
    const std::uint32_t code = fourHexDigits();
    require(!isLowSurrogate(code));
    if (!isHighSurrogate(code)) return code;
    require(takeAll("\\u"));
    const std::uint32_t low = fourHexDigits();
    require(isLowSurrogate(low));
    return 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
  }

  std::uint32_t escape() {
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const char letter = next();
    if (letter == 'u') return escapedCodePoint();
    const auto at = kLetters.find(letter);
    require(at != std::string_view::npos);
    return static_cast<unsigned char>(kMeanings[at]);
  }

  std::uint32_t continuation() {
    const auto byte = static_cast<unsigned char>(next());
    require(byte >= 0x80 && byte < 0xC0);
    return byte & 0x3Fu;
  }

  std::uint32_t codePoint() {
    const auto lead = static_cast<unsigned char>(next());
    require(lead >= 0x20);
    if (lead < 0x80) return lead;
    require(lead >= 0xC0 && lead < 0xF8);
    const int following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    std::uint32_t code = lead & (0x3Fu >> following);
    for (int i = 0; i < following; ++i) code = (code << 6) | continuation();
    constexpr std::uint32_t kLeast[] = {0x80, 0x800, 0x10000};
    require(code >= kLeast[following - 1] && code <= 0x10FFFF);
    require(!isHighSurrogate(code) && !isLowSurrogate(code));
    return code;
  }

  static void append(std::string& out, std::uint32_t code) {
    const auto add = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (code < 0x80) return add(code);
    if (code < 0x800) {
      add(0xC0 | code >> 6);
    } else {
      if (code < 0x10000) {
        add(0xE0 | code >> 12);
      } else {
        add(0xF0 | code >> 18);
        add(0x80 | (code >> 12 & 0x3F));
      }
      add(0x80 | (code >> 6 & 0x3F));
    }
    add(0x80 | (code & 0x3F));
  }

  std::string text() {
    require(takeAll("\""));
    std::string out;
    while (!takeAll("\"")) append(out, takeAll("\\") ? escape() : codePoint());
    return out;
  }

  std::string_view rest_;
};

}  // namespace

std::optional<Node> read(std::string_view text) {
  try {
    return Reader(text).document();
  } catch (const NotJson&) {
    return std::nullopt;
  }
}

}  // namespace tessum::plain_json
