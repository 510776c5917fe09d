// Random configuration files as people write them: with comments, trailing commas, any line ends,
// byte-order marks and odd indentation.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/chance.h"

namespace tessum {

// The author of one file. Not thread-safe.
class UntidyAuthor : Chance {
 public:
  explicit UntidyAuthor(std::uint32_t seed) : Chance(seed) {
    lineBreak_ = maybe(3) ? "\r\n" : "\n";
    isPlain_ = maybe(4);
    isOneLine_ = maybe(5);
    unit_ = oneOf<6>({"  ", "    ", "\t", "   ", " ", ""});
  }

  // A JSON object with `container` among its members more often than not, or a text without a
  // value.
  std::string json(std::string_view container) {
    if (maybe(25)) return oneOf<5>({"", "\n", "\xEF\xBB\xBF", "// nothing yet", "/* a\n b */\n"});
    const std::string mark = maybe(6) ? "\xEF\xBB\xBF" : "";
    std::string text = mark + gap("") + object("", 0, container) + gap("");
    return maybe(2) ? text : text + lineBreak_;
  }

  // A TOML file with tables of `container` among its own more often than not.
  std::string toml(std::string_view container) {
    std::string text = maybe(6) ? "\xEF\xBB\xBF" : "";
    const std::string break_ = lineBreak_;
    const auto line = [&](const std::string& content) {
      text += (maybe(3) ? oneOf<3>({" ", "\t", "   "}) : "") + content;
      if (maybe(3)) text += oneOf<3>({" # [mcp_servers.tessum]", "\t# \"", " #"});
      text += break_;
      if (maybe(4)) text += break_;
    };
    for (int count = below(4); count > 0; --count)
      line("key" + std::to_string(count) + plainToml());
    for (int count = below(4); count > 0; --count) {
      line("[table" + std::to_string(count) + (maybe(2) ? " . \"a b\"]" : "]"));
      for (int keys = below(3); keys > 0; --keys) line("k" + std::to_string(keys) + plainToml());
    }
    if (!maybe(3)) {
      if (maybe(3)) line("[" + std::string(container) + "]");
      line("[" + std::string(container) + ".other]");
      line("command = 'x'");
      if (maybe(2)) line("[ " + std::string(container) + " . other . env ]");
    }
    if (maybe(3) && text.ends_with(break_)) text.resize(text.size() - break_.size());
    return text;
  }

 private:
  std::string plainToml() {
    return " = " + oneOf<10>({"1", "\"a # b\"", "'[x]'", "[1, [2, 3], { a = \"}\" }]",
                              "\"\"\"\n[mcp_servers.tessum]\n\\\"\"\"\"", "'''\n[y]\n'''",
                              "1979-05-27 07:32:00", "0x1F", "[\n  1, # ]\n  2,\n]",
                              "{ x = 1, y.z = [\"]\"] }"});
  }

  // White space and comments between two tokens.
  std::string gap(const std::string& indentation) {
    if (isOneLine_) return maybe(2) ? " " : "";
    switch (isPlain_ ? below(3) : below(8)) {
      case 0:
        return maybe(4) ? "\t" : " ";
      case 3:
        return " // it's {\"a\": 1," + lineBreak_ + indentation;
      case 4:
        return "/* } */";
      case 5:
        return " /* \"" + lineBreak_ + indentation + " // ] */";
      case 6:
        return lineBreak_ + (maybe(2) ? indentation : "");
      default:
        return "";
    }
  }

  // What separates members: more regular than any gap, as in most files.
  std::string separator(const std::string& indentation) {
    if (maybe(5)) return gap(indentation);
    return isOneLine_ ? "" : lineBreak_ + (maybe(8) ? " " : "") + indentation;
  }

  std::string text() {
    return oneOf<9>({"\"a\"", "\"\"", "\"// no comment\"", "\"/* nor this */\"", "\"{[,\"",
                     "\"\\\\\"", "\"\\\",}\"", "\"é😀\"", "\"\\u00e9\\/\""});
  }

  std::string scalar() {
    if (maybe(2)) return text();
    return oneOf<7>(
        {"0", "-1.50", "1e400", "123456789012345678901234567890", "true", "false", "null"});
  }

  std::string value(const std::string& indentation, int level) {
    if (level > 3 || maybe(2)) return scalar();
    return maybe(3) ? array(indentation, level) : object(indentation, level, "");
  }

  std::string array(const std::string& indentation, int level) {
    std::string out = "[";
    const int count = below(4);
    for (int i = 0; i < count; ++i) {
      out += gap(indentation) + value(indentation, level + 1) + gap(indentation);
      if (i + 1 < count || isTrailing()) out += ",";
    }
    return out + gap(indentation) + "]";
  }

  bool isTrailing() { return !isPlain_ && maybe(3); }

  std::string object(const std::string& indentation, int level, std::string_view container) {
    const std::string inner = indentation + unit_;
    std::string out = "{";
    const int count = below(5);
    const int place = container.empty() || maybe(3) ? -1 : below(count + 1);
    for (int i = 0; i <= count; ++i) {
      if (i == count && place != count) break;
      out += separator(inner);
      const bool isContainer = i == place;
      out += isContainer ? "\"" + std::string(container) + "\""
                         : "\"key" + std::to_string(i) + (maybe(4) ? "\\\"\"" : "\"");
      out += gap(inner) + ":" + (maybe(5) ? gap(inner) : " ");
      out += isContainer ? object(inner, level + 1, "") : value(inner, level + 1);
      if (maybe(5)) out += gap(inner);
      const bool isLast = i == count || (i + 1 == count && place != count);
      if (!isLast || isTrailing()) out += ",";
    }
    return out + separator(indentation) + "}";
  }

  std::string lineBreak_;
  std::string unit_;
  bool isPlain_ = false;
  bool isOneLine_ = false;
};

}  // namespace tessum
