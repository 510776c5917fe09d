// Lays out text in columns, using the width that terminals give each character. The bodies of Table
// are in table.cc.

#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/store/records.h"

namespace tessum {

// The medium that reports are written to.
struct Paper {
  std::size_t columns = 0;  // 0 means no limit
  bool hasColour = false;
  bool isAscii = false;  // it shows no other characters, so what the program draws has none
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
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns,
                                    const Paper& paper = {});

// Something that the user typed, for the line of a message: shortened, and in quotes.
[[nodiscard]] std::string inQuotes(std::string_view text);

// "1 session", "3 sessions"; pass `many` when the plural is not `one` with an "s".
[[nodiscard]] std::string counted(std::integral auto count, const std::string& one,
                                  const std::string& many = "") {
  const std::string& noun = count == 1 ? one : many.empty() ? one + "s" : many;
  return std::to_string(count) + " " + noun;
}

// Such as "1h 5m".
[[nodiscard]] inline std::string shortDuration(double seconds) {
  return durationText(seconds, DurationForm::shortForm);
}

// `text` in lines of at most `columns`, divided at blanks. A word that is wider is divided, too,
// except one with a slash: that may be a path, and stays whole.
[[nodiscard]] std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

// `text` in as many lines as the paper's width needs, each with its end.
[[nodiscard]] std::string paragraph(std::string_view text, const Paper& paper);

// The same for what stands above a table: `title` emphasized, and `rest` behind it or, where that
// is too wide, below it.
[[nodiscard]] std::string heading(const std::string& title, const std::string& rest,
                                  const Paper& paper);

// A bar for `share` of `columns`, in eighths of a column or, in ASCII, in halves; any share above 0
// is visible.
[[nodiscard]] std::string bar(double share, std::size_t columns, const Paper& paper = {});

// How text is emphasized on paper that has colour; without colour all look the same.
enum class Tone { plain, strong, faint, accent, good, bad };

[[nodiscard]] std::string toned(std::string_view text, Tone tone, const Paper& paper);

// Rows of cells in columns as wide as their widest cell. On paper that is too narrow the widest
// columns of text get narrower; what still does not fit continues in an indented line. Bars get
// shorter, and columns that may be left out make room for them. Not thread-safe.
class Table {
 public:
  enum class Alignment {
    left,
    right  // for numbers and times, which are never cut
  };

  // What becomes of a text that is too wide.
  enum class Fit {
    cut,    // its end
    wrap,   // into several lines; only for the last column
    whole,  // never cut, as paths are: it gets a line of its own
  };
  struct Cell {
    std::string text;  // made printable by the table
    Tone tone = Tone::plain;
    Fit fit = Fit::cut;
    std::optional<double> share = std::nullopt;  // shows a bar of that part of the column instead
  };

  // The columns numbered `omissible` are left out for bars where there is no room for both, the
  // first of them first.
  explicit Table(std::vector<Alignment> columns, std::vector<std::size_t> omissible = {})
      : alignments_(std::move(columns)), omissible_(std::move(omissible)) {}

  // A bar; very narrow paper has none.
  [[nodiscard]] static Cell barCell(double share, Tone tone);

  // Each row has one cell for each column.
  void addRow(std::vector<Cell> cells);

  // Each row as a line, indented by two blanks and without trailing blanks.
  [[nodiscard]] std::string text(const Paper& paper) const;

 private:
  struct Column {
    std::size_t width = 0;
    std::size_t least = 0;    // to which the width may shrink
    bool beginsLine = false;  // of the row's further lines
    bool isOfBars = false;
    bool isOmitted = false;
  };

  // As wide as the cells, or as those that are not whole.
  [[nodiscard]] std::vector<Column> naturalColumns(bool countsWholeCells) const;
  [[nodiscard]] std::vector<Column> columnsFor(const Paper& paper) const;
  void makeRoomForBars(std::vector<Column>& columns, std::size_t most) const;
  [[nodiscard]] static std::size_t lineWidth(std::span<const Column> line);
  static void narrow(std::span<Column> line, std::size_t most);

  std::vector<Alignment> alignments_;
  std::vector<std::size_t> omissible_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace tessum
