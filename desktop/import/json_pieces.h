// Takes apart a JSON file of any size without holding it in memory: it may have hundreds of
// megabytes, while an event has some hundred bytes.
//
// The containers at the top of the document are entered one by one; what they hold is given as
// text, for the JSON reader to parse. Only brackets and quotes are looked at here, so an event that
// is not JSON is noticed only when it is parsed.

#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// The file does not have the form of a JSON document, or cannot be read.
class BrokenFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The keys of the objects that lead to a value, the outermost first; an array adds an empty one.
using JsonPath = std::vector<std::string>;

struct JsonPieces {
  // Whether the object or array at `path` is entered rather than given whole. `isArray` tells which
  // it is.
  std::function<bool(const JsonPath& path, bool isArray)> isEntered;

  // Takes the text of a value at `path`: of any that is not entered.
  std::function<void(const JsonPath& path, std::string_view text)> take;
};

// A value that is longer than this is given as an empty text.
inline constexpr std::size_t kLongestPiece = 1 << 20;

// Reads the file at `path` from its beginning to its end. Throws BrokenFile.
void readJsonPieces(const std::string& path, const JsonPieces& pieces);

}  // namespace tessum
