#include "core/mcp/tool_arguments.h"

#include "core/json/number.h"

namespace tessum {
namespace {

ToolArguments decodeArguments(const json::Member& object) {
  ToolArguments arguments;
  if (!object.isObject()) return arguments;
  json::forEachMember(object.source, [&](const json::Member& member) {
    if (member.key == "date") arguments.date = member.text;
    if (member.key == "duration") arguments.duration = member.text;
    if (member.key == "limit") arguments.limit = json::integralValue(member.source.text());
    if (member.key == "query") arguments.query = member.text;
    if (member.key == "text") arguments.text = member.text;
  });
  return arguments;
}

}  // namespace

ToolCall ToolCall::decode(const AnyCodable& params) {
  ToolCall call;
  params.forEachMember([&](const json::Member& member) {
    if (member.key == "name") call.name = member.text;
    if (member.key == "arguments") call.arguments = decodeArguments(member);
  });
  return call;
}

}  // namespace tessum
