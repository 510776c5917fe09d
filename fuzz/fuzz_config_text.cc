// Arbitrary bytes as an assistant's configuration file: either refused, or edited in such a way
// that every byte comes back when the entry is taken out again.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/base/check.h"
#include "desktop/clients/edit/json_text.h"
#include "desktop/clients/edit/toml_text.h"

namespace {

using namespace tessum;

// A text that had no entry comes back whole; one that had an entry has none afterwards.
void edit(const ConfigText& editor, std::string_view text) {
  const json::Value entry =
      json::Value::Object{{"args", json::Value::Array()}, {"command", "/usr/bin/TessumMCP"}};
  try {
    const bool hadEntry = editor.entry(text).has_value();
    const EditedText edited = editor.withEntry(text, entry, {});
    TESSUM_CHECK(editor.entry(edited.text) == entry, edited.text);
    TESSUM_CHECK(edited.isReplaced == hadEntry, edited.text);
    const std::string after = editor.withoutEntry(edited.text, edited.addition);
    TESSUM_CHECK(hadEntry || after == text, edited.text);
    TESSUM_CHECK(!editor.entry(after), after);
  } catch (const CannotEdit&) {
    // Refused, which is always safe.
  }
  try {
    const std::string without = editor.withoutEntry(editor.withEntry(text, entry, {}).text, {});
    TESSUM_CHECK(!editor.entry(without), without);
  } catch (const CannotEdit&) {
  }
  TESSUM_CHECK(editor.entry(editor.rewritten(text, entry).text) == entry, text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  edit(JsonText("mcpServers", "tessum"), text);
  edit(TomlText("mcp_servers", "tessum"), text);
  return 0;
}
