// What GNOME Shell and our extension of it may say: a window of any texts, and a description of the
// extension with values of any types.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/workspace/gnome/shell_extension.h"
#include "core/workspace/linux/focused_window.h"
#include "core/workspace/title.h"
#include "fuzz/input.h"
#include "tests/support/bus/bus_draft_linux.h"

namespace {

using tessum::BusDictionary;
using tessum::BusDraft;
using tessum::BusMessage;
using tessum::FuzzInput;

// The bus lets no other texts through.
std::string takeText(FuzzInput& input) {
  std::string text = tessum::validUtf8(input.takeText());
  text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
  for (int doublings = input.takeByte() % 16; doublings > 0; --doublings) text += text;
  return text;
}

void checkName(const std::optional<std::string>& name, const std::string& text) {
  TESSUM_CHECK(name.has_value() != text.empty(), "an empty text is no name");
  if (!name) return;
  TESSUM_CHECK(name->size() <= tessum::kLongestName && text.starts_with(*name), "a part of it");
  TESSUM_CHECK(tessum::validUtf8(*name) == *name, "a name is UTF-8");
}

void readWindow(FuzzInput& input) {
  const tessum::FocusedWindow window{takeText(input), takeText(input), takeText(input),
                                     takeText(input), input.takeByte() * 0x01020304U};
  BusDraft draft;
  const bool isMade =
      sd_bus_message_append(draft.message(), "(ssssu)", window.applicationId.c_str(),
                            window.instance.c_str(), window.windowClass.c_str(),
                            window.title.c_str(), window.process) >= 0;
  TESSUM_CHECK(isMade, "a window could not be written");
  const BusMessage message(draft.sealed());
  TESSUM_CHECK(tessum::readFocusedWindow(message) == window, "another window was read");
  TESSUM_CHECK(!message.readOne<BusDictionary>(), "a window is no dictionary");

  const auto description = tessum::describe(window, "here");
  checkName(description.applicationId, window.applicationId);
  checkName(description.instance, window.instance);
  checkName(description.windowClass, window.windowClass);
  TESSUM_CHECK(description.process.value_or(1) > 0, "a process has a number");
}

void appendValue(sd_bus_message* message, FuzzInput& input) {
  static const char* const kNames[] = {"state", "error", "ShellVersion", "UserExtensionsEnabled"};
  const char* name = kNames[input.takeByte() % 4];
  const int kind = input.takeByte() % 5;
  int result = 0;
  if (kind == 0) result = sd_bus_message_append(message, "{sv}", name, "b", input.takeByte() % 2);
  if (kind == 1) result = sd_bus_message_append(message, "{sv}", name, "d", input.takeDouble());
  if (kind == 2) {
    result = sd_bus_message_append(message, "{sv}", name, "s", takeText(input).c_str());
  }
  if (kind == 3) result = sd_bus_message_append(message, "{sv}", name, "as", 1, "text");
  if (kind == 4) result = sd_bus_message_append(message, "{sv}", name, "v", "u", 7);
  TESSUM_CHECK(result >= 0, "a value could not be written");
}

void readExtension(FuzzInput& input) {
  BusDraft draft;
  bool isMade = sd_bus_message_open_container(draft.message(), 'a', "{sv}") >= 0;
  for (int i = input.takeByte() % 8; i > 0; --i) appendValue(draft.message(), input);
  isMade = isMade && sd_bus_message_close_container(draft.message()) >= 0;
  TESSUM_CHECK(isMade, "a dictionary could not be written");
  const BusMessage message(draft.sealed());
  TESSUM_CHECK(!tessum::readFocusedWindow(message), "a dictionary is no window");
  const auto values = message.readOne<BusDictionary>();
  TESSUM_CHECK(values.has_value(), "a dictionary was not read");

  const auto notice = tessum::noticeOf(tessum::readShellExtension(*values, *values));
  if (notice) TESSUM_CHECK(!notice->text.empty() && !notice->remedy.empty(), "nothing is said");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  while (!input.isEmpty()) {
    input.takeBool() ? readWindow(input) : readExtension(input);
  }
  return 0;
}
