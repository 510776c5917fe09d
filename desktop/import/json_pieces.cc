#include "desktop/import/json_pieces.h"

#include <cstdio>
#include <memory>

#include "core/base/text.h"

namespace tessum {
namespace {

// No document that is entered is nested more deeply.
constexpr std::size_t kDeepest = 16;

bool isWhiteSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Takes the characters of a document one by one. Not thread-safe.
class PieceReader {
 public:
  explicit PieceReader(const JsonPieces& pieces) : pieces_(pieces) {}

  void add(char c) {
    if (!piece_.empty()) return addToPiece(c);
    if (!isWhiteSpace(c)) addBetween(c);
  }

  // Throws where the document has not ended.
  void finish() {
    // A number has no end of its own.
    if (!piece_.empty() && entered_.empty() && depth_ == 0 && !isInText_) endPiece();
    if (!hasEnded_) throw BrokenFile("it ends in the middle of the document");
  }

 private:
  enum class Expected { value, key, colon, commaOrEnd };

  // A character that belongs to the document itself: to what was entered.
  void addBetween(char c) {
    if (hasEnded_) throw BrokenFile("more text follows the document");
    switch (expected_) {
      case Expected::colon:
        if (c != ':') fail();
        expected_ = Expected::value;
        return;
      case Expected::commaOrEnd:
        if (c == ',') {
          expected_ = entered_.back() == '[' ? Expected::value : Expected::key;
          return;
        }
        return leave(c);
      case Expected::key:
        if (c == '}') return leave(c);
        if (c != '"') fail();
        break;
      case Expected::value:
        if (c == ']') return leave(c);
        if (c == ',' || c == ':' || c == '}') fail();
        break;
    }
    begin(c);
  }

  void begin(char c) {
    const bool isContainer = c == '{' || c == '[';
    if (isContainer && expected_ == Expected::value && pieces_.isEntered(path_, c == '[')) {
      if (entered_.size() == kDeepest) fail();
      entered_.push_back(c);
      path_.emplace_back();
      expected_ = c == '[' ? Expected::value : Expected::key;
      return;
    }
    isTooLong_ = false;
    isInText_ = false;
    isEscaped_ = false;
    depth_ = 0;
    piece_.clear();
    addToPiece(c);
  }

  void addToPiece(char c) {
    const bool isScalar = depth_ == 0 && !isInText_ && !piece_.empty();
    if (isScalar && (c == ',' || c == ']' || c == '}' || isWhiteSpace(c))) {
      endPiece();
      return add(c);
    }
    if (piece_.size() < kLongestPiece) {
      piece_ += c;
    } else {
      isTooLong_ = true;
    }
    if (isInText_) {
      if (isEscaped_) {
        isEscaped_ = false;
      } else if (c == '\\') {
        isEscaped_ = true;
      } else if (c == '"') {
        isInText_ = false;
        if (depth_ == 0) endPiece();
      }
      return;
    }
    if (c == '"') {
      isInText_ = true;
    } else if (c == '{' || c == '[') {
      ++depth_;
    } else if ((c == '}' || c == ']') && --depth_ == 0) {
      endPiece();
    }
  }

  void endPiece() {
    if (expected_ == Expected::key) {
      path_.back() = piece_.substr(1, piece_.size() - 2);
      expected_ = Expected::colon;
    } else {
      pieces_.take(path_, isTooLong_ ? std::string_view() : piece_);
      endValue();
    }
    piece_.clear();
  }

  void endValue() {
    expected_ = Expected::commaOrEnd;
    hasEnded_ = entered_.empty();
  }

  void leave(char c) {
    if (entered_.empty() || (c == ']') != (entered_.back() == '[') || (c != ']' && c != '}')) {
      fail();
    }
    entered_.pop_back();
    path_.pop_back();
    endValue();
  }

  [[noreturn]] static void fail() { throw BrokenFile("it is not JSON"); }

  const JsonPieces& pieces_;
  JsonPath path_;
  std::string entered_;  // the brackets of what was entered
  Expected expected_ = Expected::value;
  bool hasEnded_ = false;

  std::string piece_;  // the value, or the key, that is being read; empty between them
  bool isTooLong_ = false;
  bool isInText_ = false;
  bool isEscaped_ = false;
  int depth_ = 0;
};

}  // namespace

void readJsonPieces(const std::string& path, const JsonPieces& pieces) {
  struct Close {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw BrokenFile("it cannot be opened");
  PieceReader reader(pieces);
  std::string chunk(1 << 16, '\0');
  bool isFirst = true;
  while (true) {
    const std::size_t size = std::fread(chunk.data(), 1, chunk.size(), file.get());
    std::string_view text(chunk.data(), size);
    if (isFirst && text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    isFirst = false;
    for (const char c : text) reader.add(c);
    if (size < chunk.size()) break;
  }
  if (std::ferror(file.get()) != 0) throw BrokenFile("it cannot be read");
  reader.finish();
}

}  // namespace tessum
