// What TessumFetch says on its standard error: a sequence of parts, each a header and its content.
// The parts of the head come first, as far as they are known; then two for each piece of the body;
// then the one that says how the transfer ended.

#pragma once

#include <cstddef>
#include <cstdint>

namespace tessum {

enum class FetchPart : std::uint32_t {
  url,                 // see HttpHead
  contentDisposition,  // likewise
  contentLength,       // in decimal digits
  body,                // a piece of the body: its content goes to standard output
  written,             // standard output has taken that piece
  failure,             // the end: what went wrong
  success              // the end: the whole body came
};

// Precedes the content of each part. Both programs run on one computer, so it is sent as it is in
// memory. Where standard output and standard error lead to one pipe, each piece of the body follows
// its header like any other content.
struct FetchPartHeader {
  FetchPart kind;
  std::uint32_t size;  // bytes of the content
};

// The longest content. libcurl takes no header this long.
inline constexpr std::size_t kLargestFetchPart = std::size_t{1} << 20;

}  // namespace tessum
