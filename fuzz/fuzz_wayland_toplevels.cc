// Events of a compositor, in any order and of any windows. Whatever they are, a window is told as
// active only if it is there, with texts in UTF-8, and no state twice in a row.

#include <cstddef>
#include <cstdint>
#include <set>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/workspace/wayland/toplevels.h"
#include "fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tessum::FuzzInput input(data, size);
  tessum::WaylandToplevels toplevels;
  std::set<tessum::WaylandToplevels::Id> there;
  std::optional<tessum::WaylandToplevel> latest;
  while (!input.isEmpty()) {
    const auto kind = input.takeByte() % 7;
    const tessum::WaylandToplevels::Id id = input.takeByte() % 8;
    switch (kind) {
      case 0:
        TESSUM_CHECK(there.insert(toplevels.add()).second, "a number given twice");
        break;
      case 1:
        toplevels.remove(id);
        there.erase(id);
        break;
      case 2:
        toplevels.setAppId(id, input.takeText());
        break;
      case 3:
        toplevels.setTitle(id, input.takeText());
        break;
      case 4:
        toplevels.setProcess(id, static_cast<std::uint32_t>(input.takeByte()) << 24U);
        break;
      case 5:
        toplevels.setActive(id, input.takeBool());
        break;
      default:
        toplevels.commit(id);
    }
    for (const auto& change : toplevels.takeChanges()) {
      TESSUM_CHECK(change != latest, "the same again");
      latest = change;
      if (!change) continue;
      TESSUM_CHECK(there.contains(change->id), "a window that is not there");
      TESSUM_CHECK(tessum::validUtf8(change->title) == change->title, "the title is not UTF-8");
      TESSUM_CHECK(tessum::validUtf8(change->appId) == change->appId, "the name is not UTF-8");
      TESSUM_CHECK(change->process.value_or(1) > 0, "the number of no process");
    }
  }
  return 0;
}
