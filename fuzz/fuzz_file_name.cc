// A URL and, after a line feed, a Content-Disposition header: the result is always a plain file
// name.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/update/file_name.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string_view url = text.substr(0, text.find('\n'));
  std::optional<std::string> header;
  if (url.size() < text.size()) header = text.substr(url.size() + 1);

  const std::string name = tessum::suggestedFileName(url, header);
  TESSUM_CHECK(!name.empty() && name.size() <= 255 && name.front() != '.', "not a plain file name");
  TESSUM_CHECK(tessum::validUtf8(name) == name, "not valid UTF-8");
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    TESSUM_CHECK(byte >= 0x20 && byte != 0x7F && c != '/',
                 "a separator or control character in a name");
  }
  return 0;
}
