// A duration is absent or positive, and an annotation backdated by it starts at a moment that has a
// time stamp.

#include <cstddef>
#include <cstdint>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/mcp/duration_argument.h"
#include "core/mcp/mcp_server.h"
#include "fuzz/small_store.h"
#include "tests/support/fakes/fake_clock.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  const std::string text = validUtf8({reinterpret_cast<const char*>(data), size});
  const auto seconds = parseDuration(text);
  if (!seconds) return 0;
  TESSUM_CHECK(*seconds > 0, "a duration that is not positive");

  const SystemCalendar calendar;
  const FakeClock clock(kNow);
  MCPServer server(makeSmallStore(calendar), 0, clock, calendar);
  const MCPToolResult result = server.callTool("annotate", {.duration = text, .text = "x"});

  const std::string& answer = result.content.front().text;
  constexpr std::string_view kBeginning = "Annotation started: x (since ";
  TESSUM_CHECK(answer.starts_with(kBeginning) && answer.ends_with(")"), answer);
  const auto stamp = answer.substr(kBeginning.size(), answer.size() - kBeginning.size() - 1);
  const auto start = parseInternetDateTime(stamp);
  TESSUM_CHECK(start.has_value(), answer);
  const bool isBackdated = secondsBetween(*start, kNow) == static_cast<double>(*seconds);
  TESSUM_CHECK(isBackdated || *start == kNow, answer);
  return 0;
}
