// A window title in a legacy encoding: whatever the bytes are, the result is UTF-8, and both
// readers agree where the encodings do.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/workspace/x11/compound_text.h"

namespace {

void checkValid(const std::string& text) {
  TESSUM_CHECK(tessum::validUtf8(text) == text, "the text is not UTF-8");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string latin = tessum::utf8FromLatin1(bytes);
  const std::string compound = tessum::utf8FromCompoundText(bytes);
  checkValid(latin);
  checkValid(compound);

  // Without escape sequences, Compound Text is Latin-1.
  const auto switches = [](char c) { return c == '\x1B' || c == '\x9B'; };
  if (std::none_of(bytes.begin(), bytes.end(), switches)) {
    TESSUM_CHECK(compound == latin, "two readings of the same text");
  }
  return 0;
}
