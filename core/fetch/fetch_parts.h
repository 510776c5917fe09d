// What TessumFetch tells on its standard error: parts, one behind the other. Those of the head come
// first, each where it is known; then two for each piece of the body, which itself goes to standard
// output; then the one that says how it ended.

#pragma once

#include <cstddef>
#include <cstdint>

namespace tessum {

enum class FetchPart : std::uint32_t {
  url,                 // see HttpHead
  contentDisposition,  // likewise
  contentLength,       // in decimal digits
  body,                // how many bytes follow on standard output, in decimal digits
  written,             // that piece is there now
  failure,             // the end: what went wrong
  success              // the end: the whole body came
};

// Stands before the content of each part. Both programs run on one computer, so it is written as it
// lies in memory.
struct FetchPartHeader {
  FetchPart kind;
  std::uint32_t size;  // bytes of the content
};

// The longest content of a part, and the longest piece of a body, that is to be expected. libcurl
// takes no header this long.
inline constexpr std::size_t kLargestFetchPart = std::size_t{1} << 20;

}  // namespace tessum
