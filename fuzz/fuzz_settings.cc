// Settings: either valid and usable, or rejected with a position.

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/base/check.h"
#include "desktop/settings/settings_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const Settings settings = readSettings(text);
    const Window window{.app = "Mail", .identifier = "org.example.Mail", .title = "Inbox (3)"};
    const Verdict verdict = judge(settings.rules.hide, window, {});
    TESSUM_CHECK((verdict.kept == Kept::all) == (verdict.rule == nullptr), text);
    static_cast<void>(categoryOf(settings.rules, window));
    for (const HideRule& rule : settings.rules.hide) {
      TESSUM_CHECK(rule.kept != Kept::all && rule.line > 0, text);
    }
  } catch (const SettingsError& error) {
    TESSUM_CHECK(std::string(error.what()).starts_with("line "), error.what());
  }
  return 0;
}
