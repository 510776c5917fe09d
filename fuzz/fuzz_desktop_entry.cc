// The first line is the user's locale, the rest a desktop entry: the names read from it are UTF-8.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/workspace/linux/desktop_entries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string_view locale = text.substr(0, text.find('\n'));
  const std::string_view file = text.substr(locale.size());

  const auto suffixes = tessum::localeSuffixes(locale);
  TESSUM_CHECK(suffixes.size() <= 4, "a locale has four names at most");
  for (const auto& localeSuffixes : {suffixes, {}}) {
    const auto entry = tessum::parseDesktopEntry(file, localeSuffixes);
    if (!entry) continue;
    TESSUM_CHECK(!entry->name.empty(), "a name is not empty");
    TESSUM_CHECK(tessum::validUtf8(entry->name) == entry->name, "a name is UTF-8");
    const auto windowClass = entry->startupWMClass.value_or("");
    TESSUM_CHECK(tessum::validUtf8(windowClass) == windowClass, "a class is UTF-8");
  }
  return 0;
}
