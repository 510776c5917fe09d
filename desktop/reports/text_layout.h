// Lays out text in columns, using the width that terminals give each character.

#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// The medium that reports are written to.
struct Paper {
  std::size_t columns = 0;  // 0 means no limit
  bool hasColour = false;
};

// The columns that `text`, which is valid UTF-8, takes up: none for combining marks, two for East
// Asian wide characters and pictographs, one for all others.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

// `text` on one line and safe for a terminal: line breaks and tabs become blanks; other control
// characters and those that change the writing direction become U+FFFD. A window title is
// untrusted: printed unchanged, it could move the cursor or send the terminal commands.
[[nodiscard]] std::string printable(std::string_view text);

// `text` with each of its lines made printable; the lines stay as they are divided, by line feeds
// with or without a carriage return before them.
[[nodiscard]] std::string printableLines(std::string_view text);

// `text` cut to at most `columns`, ending in an ellipsis if cut.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns);

// "1 session", "3 sessions"; pass `many` when the plural is not `one` with an "s".
[[nodiscard]] std::string counted(std::integral auto count, const std::string& one,
                                  const std::string& many = "") {
  const std::string& noun = count == 1 ? one : many.empty() ? one + "s" : many;
  return std::to_string(count) + " " + noun;
}

// A bar for `share` of `columns`, in eighths of a column; any share above 0 is visible.
[[nodiscard]] std::string bar(double share, std::size_t columns);

// How text is emphasized on paper that has colour; without colour all look the same.
enum class Tone { plain, strong, faint, accent, good, bad };

[[nodiscard]] std::string toned(std::string_view text, Tone tone, const Paper& paper);

// Rows of cells in columns as wide as their widest cell. The last column takes the rest of the line
// and is cut at the paper's width. Not thread-safe.
class Table {
 public:
  enum class Alignment { left, right };
  struct Cell {
    std::string text;  // made printable by the table
    Tone tone = Tone::plain;
  };

  explicit Table(std::vector<Alignment> columns) : alignments_(std::move(columns)) {}

  // Each row has one cell for each column.
  void addRow(std::vector<Cell> cells);

  // Each row as a line, indented by two blanks and without trailing blanks.
  [[nodiscard]] std::string text(const Paper& paper) const;

 private:
  std::vector<Alignment> alignments_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace tessum
