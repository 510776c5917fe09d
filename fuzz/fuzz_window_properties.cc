// A window's properties, each with its type, its bits per item and its bytes. Whatever they are,
// the names and the title that are read are UTF-8.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/workspace/title.h"
#include "core/workspace/x11/window_properties.h"
#include "fuzz/input.h"

namespace {

constexpr tessum::X11Atoms kAtoms{.activeWindow = 1,
                                  .windowManagerCheck = 2,
                                  .netName = 3,
                                  .process = 4,
                                  .applicationId = 5,
                                  .desktopFile = 6,
                                  .name = 7,
                                  .windowClass = 8,
                                  .clientMachine = 9,
                                  .utf8String = 10,
                                  .compoundText = 11};

void checkText(const std::optional<std::string>& text, std::size_t longest) {
  if (!text) return;
  TESSUM_CHECK(!text->empty() && text->size() <= longest, "a text of another length");
  TESSUM_CHECK(tessum::validUtf8(*text) == *text, "the text is not UTF-8");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tessum::FuzzInput input(data, size);
  const auto names = tessum::windowPropertyNames(kAtoms);
  tessum::X11Properties properties(names.size());
  for (auto& property : properties) {
    if (input.isEmpty()) break;
    property = tessum::X11Property{input.takeByte(), input.takeByte(), input.takeText()};
  }
  const auto [description, title] = tessum::readWindowProperties(1, properties, kAtoms);
  checkText(title, tessum::kLongestTitle);
  for (const auto& name : {description.applicationId, description.desktopFile, description.instance,
                           description.windowClass, description.clientMachine}) {
    checkText(name, tessum::kLongestName);
  }
  TESSUM_CHECK(description.process.value_or(1) > 0, "the number of no process");
  return 0;
}
