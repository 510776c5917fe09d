#include "core/json/writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tessum::json {
namespace {

// The letter after the backslash, for each byte that must be escaped; 'u' begins a code point.
constexpr auto kEscapes = [] {
  std::array<char, 256> escapes{};
  for (std::size_t control = 0; control < 0x20; ++control) escapes[control] = 'u';
  escapes['\b'] = 'b';
  escapes['\f'] = 'f';
  escapes['\n'] = 'n';
  escapes['\r'] = 'r';
  escapes['\t'] = 't';
  escapes['"'] = '"';
  escapes['\\'] = '\\';
  escapes['/'] = '/';
  return escapes;
}();

void appendEscape(std::string& out, unsigned char byte) {
  constexpr char kHexDigits[] = "0123456789abcdef";
  out += '\\';
  out += kEscapes[byte];
  if (kEscapes[byte] != 'u') return;
  out += "00";
  out += kHexDigits[byte >> 4];
  out += kHexDigits[byte & 0xF];
}

// The number of leading bytes that need no escape. Tests eight at a time, as few bytes need one: a
// byte is below N when its highest bit is clear and subtracting N sets it; it equals C when the XOR
// of both is below 1.
std::size_t plainPrefix(std::string_view text) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = 0x80 * kEach;
  const auto below = [](std::uint64_t word, std::uint64_t limit) {
    return (word - limit * kEach) & ~word & kHighBits;
  };
  const auto equal = [&](std::uint64_t word, unsigned char wanted) {
    return below(word ^ wanted * kEach, 1);
  };
  std::size_t at = 0;
  for (std::uint64_t word = 0; at + sizeof word <= text.size(); at += sizeof word) {
    std::memcpy(&word, text.data() + at, sizeof word);
    if ((below(word, 0x20) | equal(word, '"') | equal(word, '\\') | equal(word, '/')) != 0) break;
  }
  while (at < text.size() && kEscapes[static_cast<unsigned char>(text[at])] == 0) ++at;
  return at;
}

// Writes one value; with `isPretty`, breaks and indents lines.
class Printer {
 public:
  Printer(std::string& out, bool isPretty) : out_(out), isPretty_(isPretty) {}

  void print(const Value& value) {
    if (const bool* boolean = value.boolean()) {
      out_ += *boolean ? "true" : "false";
    } else if (const Number* number = value.number()) {
      out_ += number->text;
    } else if (const std::string* text = value.text()) {
      appendString(out_, *text);
    } else if (const Value::Array* array = value.array()) {
      printAll('[', *array, ']', [this](const Value& element) { print(element); });
    } else if (const Value::Object* object = value.object()) {
      printAll('{', *object, '}', [this](const auto& member) {
        appendString(out_, member.first);
        out_ += isPretty_ ? ": " : ":";
        print(member.second);
      });
    } else {
      out_ += "null";
    }
  }

 private:
  template <typename Items, typename PrintItem>
  void printAll(char open, const Items& items, char close, PrintItem printItem) {
    out_ += open;
    depth_ += 1;
    bool isFirst = true;
    for (const auto& item : items) {
      if (!isFirst) out_ += ',';
      isFirst = false;
      breakLine();
      printItem(item);
    }
    depth_ -= 1;
    if (!items.empty()) breakLine();
    out_ += close;
  }

  void breakLine() {
    if (!isPretty_) return;
    out_ += '\n';
    out_.append(2 * depth_, ' ');
  }

  std::string& out_;
  const bool isPretty_;
  std::size_t depth_ = 0;
};

}  // namespace

void appendString(std::string& out, std::string_view text) {
  out += '"';
  for (;;) {
    const std::size_t plain = plainPrefix(text);
    out.append(text.substr(0, plain));
    if (plain == text.size()) break;
    appendEscape(out, static_cast<unsigned char>(text[plain]));
    text.remove_prefix(plain + 1);
  }
  out += '"';
}

std::string& ObjectWriter::member(std::string_view key) {
  if (out_.back() != '{') out_ += ',';
  appendString(out_, key);
  out_ += ':';
  return out_;
}

void ObjectWriter::text(std::string_view key, std::string_view value) {
  appendString(member(key), value);
}

void ObjectWriter::boolean(std::string_view key, bool value) {
  member(key) += value ? "true" : "false";
}

void appendCompact(std::string& out, const Value& value) {
  Printer(out, false).print(value);
}

std::string compact(const Value& value) {
  std::string out;
  appendCompact(out, value);
  return out;
}

std::string pretty(const Value& value) {
  std::string out;
  Printer(out, true).print(value);
  return out;
}

}  // namespace tessum::json
