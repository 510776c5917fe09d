// One byte with the length of the pieces, then TessumFetch's output: the parts do not depend on how
// the output is cut.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/base/check.h"
#include "core/fetch/fetch_part_reader.h"

namespace {

using tessum::FetchPartReader;

// The parts as a text, with a mark where bytes were not a valid part.
std::string partsIn(std::string_view bytes, std::size_t length, FetchPartReader::Body body) {
  FetchPartReader reader(body);
  std::string parts;
  try {
    for (std::size_t at = 0; at < bytes.size(); at += length) {
      reader.add(bytes.substr(at, length));
      while (const auto part = reader.next()) {
        TESSUM_CHECK(part->size <= tessum::kLargestFetchPart, "a part is too long");
        parts += std::to_string(static_cast<std::uint32_t>(part->kind)) + " " +
                 std::to_string(part->size) + " ";
        parts += part->content;
      }
    }
  } catch (const tessum::BadFetchPart&) {
    parts += "bad";
  }
  return parts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t length = std::size_t{data[0]} + 1;
  for (const auto body : {FetchPartReader::Body::amongTheParts, FetchPartReader::Body::elsewhere}) {
    TESSUM_CHECK(partsIn(bytes, length, body) == partsIn(bytes, size, body),
                 "the parts depend on how the bytes come");
  }
  return 0;
}
