// An engine over a real database, at a fixed moment in a fixed zone.

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "core/base/limits.h"
#include "core/json/reader.h"
#include "core/mcp/mcp_server.h"
#include "tests/support/environment.h"
#include "tests/support/fakes/fake_clock.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

inline constexpr Date kNoon{1741089600};  // 2025-03-04 12:00:00 UTC

class EngineTest : public testing::Test {
 protected:
  // The answer to `message`, which must get one.
  json::Value answer(std::string_view message) {
    const auto response = server_.handleBody(json::PaddedString(message).view());
    EXPECT_TRUE(response.has_value()) << message;
    return json::parse(response.value_or("null"));
  }

  // The answer to a request with id 1 whose method and params are given as JSON.
  json::Value call(std::string_view method, std::string_view params) {
    return answer(R"({"jsonrpc":"2.0","id":1,"method":)" + std::string(method) + R"(,"params":)" +
                  std::string(params) + "}");
  }

  // The one text of a tool's result, and whether it is an error; the result must hold no more.
  struct ToolText {
    std::string text;
    bool isError = false;
    friend bool operator==(const ToolText&, const ToolText&) = default;
    friend void PrintTo(const ToolText& result, std::ostream* out) {
      *out << (result.isError ? "error: " : "text: ") << result.text;
    }
  };
  ToolText tool(std::string_view name, std::string_view arguments = "{}") {
    const json::Value response =
        call(R"("tools/call")", R"({"name":")" + std::string(name) + R"(","arguments":)" +
                                    std::string(arguments) + "}");
    const json::Value* result = member(response, "result");
    if (result == nullptr) return {"no result", true};
    const json::Value* content = member(*result, "content");
    EXPECT_EQ(content->array()->size(), 1u);
    EXPECT_EQ(*member(content->array()->at(0), "type")->text(), "text");
    return {*member(content->array()->at(0), "text")->text(),
            *member(*result, "isError")->boolean()};
  }

  // The member `key` of an object; null where there is none.
  static const json::Value* member(const json::Value& value, std::string_view key) {
    if (value.object() == nullptr) return nullptr;
    const auto found = value.object()->find(key);
    return found == value.object()->end() ? nullptr : &found->second;
  }

  const ScopedVariable zone_{"TZ", "UTC"};
  const TemporaryFolder folder_;
  const SystemCalendar calendar_{};
  FakeClock clock_{kNoon};
  std::shared_ptr<Database> database_ =
      std::make_shared<Database>(folder_.file("activities.db"), calendar_);
  MCPServer server_{database_, limits::kDefaultPort, clock_, calendar_};
  Sql sql_{folder_.file("activities.db")};
};

}  // namespace tessum
