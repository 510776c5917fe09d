#include "desktop/clients/edit/toml_layout.h"

#include <algorithm>

#include "desktop/clients/edit/json_layout.h"

namespace tessum {
namespace {

// Walks over a text that a reader has accepted, so it looks for the ends of things only. Behind the
// text's end it sees NUL, which TOML does not have.
class Walk {
 public:
  explicit Walk(std::string_view text) : text_(text), at_(startOfText(text)) {}

  std::vector<TomlStatement> statements() {
    std::vector<TomlStatement> statements;
    std::vector<std::string> table;
    while (skipToStatement()) {
      TomlStatement statement{.path = {}, .isHeader = here() == '[', .begin = at_};
      if (statement.isHeader) {
        while (here() == '[') ++at_;
        table = key();
        statement.path = table;
        while (here() == ']') ++at_;
      } else {
        statement.path = table;
        for (std::string& part : key()) statement.path.push_back(std::move(part));
        ++at_;  // the equals sign
        skip(" \t");
        value();
      }
      statement.end = at_;
      statements.push_back(std::move(statement));
      skip(" \t");
    }
    return statements;
  }

 private:
  [[nodiscard]] char here() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  void skip(std::string_view set) {
    at_ = std::min(text_.find_first_not_of(set, at_), text_.size());
  }

  void skipTo(std::string_view set) { at_ = std::min(text_.find_first_of(set, at_), text_.size()); }

  // Skips white space and comments; false at the end.
  bool skipToStatement() {
    skip(" \t\r\n");
    while (here() == '#') {
      skipTo("\n");
      skip(" \t\r\n");
    }
    return at_ < text_.size();
  }

  // The parts of a key up to what follows it.
  std::vector<std::string> key() {
    std::vector<std::string> parts;
    do {
      if (here() == '.') ++at_;
      skip(" \t");
      const std::size_t begin = at_;
      if (here() == '"' || here() == '\'') {
        string();
        parts.emplace_back(text_.substr(begin + 1, at_ - begin - 2));
      } else {
        skipTo(" \t.=]");
        parts.emplace_back(text_.substr(begin, at_ - begin));
      }
      skip(" \t");
    } while (here() == '.');
    return parts;
  }

  void string() {
    const char quote = here();
    const std::string three(3, quote);
    if (text_.substr(at_, 3) == three) {
      at_ += 3;
      while (at_ < text_.size() && text_.substr(at_, 3) != three) step(quote);
      at_ = std::min(at_ + 3, text_.size());
      while (here() == quote) ++at_;  // up to two quotes may belong to the text
      return;
    }
    ++at_;
    while (at_ < text_.size() && here() != quote) step(quote);
    at_ = std::min(at_ + 1, text_.size());
  }

  // One character of a string; in those with double quotes a backslash takes the next along.
  void step(char quote) { at_ += quote == '"' && here() == '\\' ? 2 : 1; }

  void value() {
    std::size_t depth = 0;
    while (at_ < text_.size()) {
      const char character = here();
      if (character == '"' || character == '\'') {
        string();
      } else if (character == '[' || character == '{') {
        ++depth;
        ++at_;
      } else if (character == ']' || character == '}') {
        --depth;
        ++at_;
      } else if (depth == 0) {
        plain();
        return;
      } else if (character == '#') {
        skipTo("\n");
        continue;
      } else {
        ++at_;
        continue;
      }
      if (depth == 0) return;
    }
  }

  // A number, a date or a word; a date may have a blank before its time.
  void plain() {
    skipTo("#\r\n");
    while (at_ > 0 && (text_[at_ - 1] == ' ' || text_[at_ - 1] == '\t')) --at_;
  }

  std::string_view text_;
  std::size_t at_;
};

}  // namespace

std::vector<TomlStatement> tomlStatements(std::string_view text) {
  return Walk(text).statements();
}

bool isBelow(const std::vector<std::string>& path, const std::vector<std::string>& start) {
  return path.size() >= start.size() && std::equal(start.begin(), start.end(), path.begin());
}

}  // namespace tessum
