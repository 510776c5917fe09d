// The engine over a small database: a request gets one response, a notification none.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/mcp/mcp_server.h"
#include "fuzz/small_store.h"
#include "tests/support/fakes/fake_clock.h"

namespace tessum {
namespace {

std::optional<JSONRPCRequest> decoded(json::PaddedView message) {
  try {
    return JSONRPCRequest::decode(message);
  } catch (const json::DecodingError&) {
    return std::nullopt;
  }
}

// A limit beyond 32 bits stops the process by design.
bool hasLimitThatStopsTheProcess(const JSONRPCRequest& request) {
  if (!request.params) return false;
  const auto limit = ToolCall::decode(*request.params).arguments.limit;
  using Range = std::numeric_limits<std::int32_t>;
  return limit && (*limit < Range::min() || *limit > Range::max());
}

void checkAnswer(const std::string& answer, const std::optional<JSONRPCRequest>& request) {
  TESSUM_CHECK(validUtf8(answer) == answer, "an answer that is not UTF-8");
  TESSUM_CHECK(answer.find('\n') == std::string::npos, "an answer of more than one line");
  const json::Value value = json::parse(answer);
  const auto& members = *value.object();
  TESSUM_CHECK(members.at("jsonrpc") == json::Value("2.0"), "an answer in another protocol");
  TESSUM_CHECK(members.contains("result") != members.contains("error"),
               "both a result and an error, or neither");
  if (!request) {
    TESSUM_CHECK(members.size() == 2, "a parse error with an id");
    TESSUM_CHECK(members.at("error").object()->at("code") == json::Value(-32700), answer);
    return;
  }
  const auto* number = std::get_if<std::int64_t>(&*request->id);
  const json::Value id =
      number != nullptr ? json::Value(*number) : json::Value(std::get<std::string>(*request->id));
  TESSUM_CHECK(members.at("id") == id, "the id of another request");
}

}  // namespace
}  // namespace tessum

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  const json::PaddedString message({reinterpret_cast<const char*>(data), size});
  const auto request = decoded(message.view());
  if (request && hasLimitThatStopsTheProcess(*request)) return 0;

  const SystemCalendar calendar;
  const FakeClock clock(kNow);
  // Only a message that decodes reaches the database.
  MCPServer server(request ? makeSmallStore(calendar) : nullptr, 0, clock, calendar);
  const auto answer = server.handleBody(message.view());
  TESSUM_CHECK(answer.has_value() == (!request || request->id), "an answer too many or too few");
  if (answer) checkAnswer(*answer, request);
  return 0;
}
