#include <algorithm>
#include <utility>

#include "core/base/check.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

constexpr std::size_t kCellGap = 2;        // before each cell
constexpr std::size_t kIndent = 4;         // of a row's further lines
constexpr std::size_t kBarColumns = 24;    // of the widest bar
constexpr std::size_t kShortestBar = 9;    // of the longest bar, so that bars can be compared
constexpr std::size_t kWidestText = 60;    // of a column without an end of the line
constexpr std::size_t kNarrowestText = 8;  // narrower than that, a text gets a line of its own

// One row on its way to the paper.
class RowText {
 public:
  RowText(const Paper& paper, std::string& out) : paper_(paper), out_(out) {}

  // Puts what follows into a new line if there is anything in this one.
  void breakLine() {
    if (used_ > 0) breakLine(kIndent);
  }

  [[nodiscard]] bool hasRoomFor(std::size_t columns) const {
    return paper_.columns == 0 || used_ + blanks_ + columns <= paper_.columns;
  }

  void skip(std::size_t columns) { blanks_ += columns; }

  void add(const std::string& text, Tone tone) {
    if (text.empty()) return;
    if (breaks_) out_ += '\n';
    out_.append(blanks_, ' ');
    out_ += toned(text, tone, paper_);
    used_ += blanks_ + displayWidth(text);
    blanks_ = 0;
    breaks_ = false;
  }

  // Each line below the one before.
  void add(const std::vector<std::string>& lines, Tone tone) {
    const std::size_t start = used_ + blanks_;
    for (const std::string& line : lines) {
      if (&line != &lines.front()) breakLine(start);
      add(line, tone);
    }
  }

 private:
  void breakLine(std::size_t indent) {
    breaks_ = true;
    used_ = 0;
    blanks_ = indent;
  }

  const Paper& paper_;
  std::string& out_;
  std::size_t used_ = 0;           // columns of the line that are written
  std::size_t blanks_ = kCellGap;  // written, as the line's break is, only if something follows
  bool breaks_ = false;
};

}  // namespace

Table::Cell Table::barCell(double share, Tone tone) {
  return {.text = "", .tone = tone, .fit = Fit::cut, .share = share};
}

void Table::addRow(std::vector<Cell> cells) {
  TESSUM_CHECK(cells.size() == alignments_.size(), "a row needs one cell for each column");
  for (Cell& cell : cells) cell.text = printable(cell.text);
  rows_.push_back(std::move(cells));
}

std::vector<Table::Column> Table::naturalColumns(bool countsWholeCells) const {
  std::vector<Column> columns(alignments_.size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      const Cell& cell = row[i];
      if (cell.fit == Fit::whole && !countsWholeCells) continue;
      const std::size_t width = cell.share ? kBarColumns : displayWidth(cell.text);
      const std::size_t least = cell.share                           ? 0
                                : alignments_[i] == Alignment::right ? width
                                                                     : kNarrowestText;
      columns[i].width = std::max(columns[i].width, width);
      columns[i].least = std::max(columns[i].least, std::min(least, width));
      if (cell.share) columns[i].isOfBars = true;
    }
  }
  return columns;
}

std::size_t Table::lineWidth(std::span<const Column> line) {
  std::size_t width = 0;
  for (const Column& column : line) width += column.width > 0 ? kCellGap + column.width : 0;
  return width;
}

void Table::narrow(std::span<Column> line, std::size_t most) {
  while (lineWidth(line) > most) {
    Column* widest = nullptr;
    for (Column& column : line) {
      const bool canShrink = column.width > column.least;
      if (canShrink && (widest == nullptr || column.width > widest->width)) widest = &column;
    }
    if (widest == nullptr) return;
    --widest->width;
  }
}

void Table::makeRoomForBars(std::vector<Column>& columns, std::size_t most) const {
  const auto setLeast = [&](std::size_t least) {
    for (Column& column : columns) {
      if (column.isOfBars) column.least = least;
    }
  };
  const auto fits = [&] {
    std::size_t least = 0;
    for (const Column& column : columns) least += column.least > 0 ? kCellGap + column.least : 0;
    return least <= most;
  };
  setLeast(kShortestBar);
  for (const std::size_t index : omissible_) {
    if (fits()) return;
    columns[index] = {.isOmitted = true};
  }
  if (!fits()) setLeast(0);
}

std::vector<Table::Column> Table::columnsFor(const Paper& paper) const {
  auto columns = naturalColumns(true);
  if (paper.columns == 0) {
    for (std::size_t i = 0; i + 1 < columns.size(); ++i) {
      columns[i].width = std::min(columns[i].width, kWidestText);
    }
    return columns;
  }
  if (lineWidth(columns) <= paper.columns) return columns;

  columns = naturalColumns(false);
  makeRoomForBars(columns, paper.columns);
  std::size_t begin = 0;
  std::size_t room = paper.columns;
  std::size_t used = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::size_t least = columns[i].least > 0 ? kCellGap + columns[i].least : 0;
    if (i > begin && used + least > room) {
      narrow(std::span(columns).subspan(begin, i - begin), room);
      columns[i].beginsLine = true;
      begin = i;
      room = paper.columns - std::min(paper.columns, kIndent - kCellGap);
      used = 0;
    }
    used += least;
  }
  narrow(std::span(columns).subspan(begin), room);
  return columns;
}

std::string Table::text(const Paper& paper) const {
  const auto columns = columnsFor(paper);
  std::string out;
  for (const auto& row : rows_) {
    RowText line(paper, out);
    for (std::size_t i = 0; i < row.size(); ++i) {
      const Cell& cell = row[i];
      const Column& column = columns[i];
      if (column.isOmitted) continue;
      // Without an end of the line, a cell that is too wide moves the rest of its own row alone.
      const bool isCut = cell.fit == Fit::cut && paper.columns > 0;
      const std::string text = cell.share ? bar(*cell.share, column.width, paper)
                               : isCut    ? shortened(cell.text, column.width, paper)
                                          : cell.text;
      const std::size_t width = displayWidth(text);
      const std::size_t blanks = width < column.width ? column.width - width : 0;
      const bool fits = cell.fit == Fit::wrap || line.hasRoomFor(width);
      if (column.beginsLine || !fits) line.breakLine();
      if (alignments_[i] == Alignment::right) line.skip(blanks);
      if (cell.fit == Fit::wrap && paper.columns > 0) {
        line.add(wrapped(text, column.width), cell.tone);
      } else {
        line.add(text, cell.tone);
      }
      if (alignments_[i] == Alignment::left) line.skip(blanks);
      line.skip(kCellGap);
    }
    out += '\n';
  }
  return out;
}

}  // namespace tessum
