#include "core/json/writer.h"

#include <array>
#include <cstddef>

namespace tessum::json {
namespace {

// The letter that stands behind a backslash for each byte that needs one; 'u' means a number.
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
  std::size_t done = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (kEscapes[byte] == 0) continue;
    out.append(text.substr(done, at - done));
    appendEscape(out, byte);
    done = at + 1;
  }
  out.append(text.substr(done));
  out += '"';
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
