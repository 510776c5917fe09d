#include "core/mcp/tool_arguments.h"

#include "core/json/number.h"

namespace tessum {
namespace {

ToolArguments decodeArguments(json::PaddedView source) {
  ToolArguments arguments;
  if (!source.text().starts_with('{')) return arguments;
  json::forEachMember(source, [&](const json::Member& member) {
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
  std::optional<json::PaddedView> arguments;
  params.forEachMember([&](const json::Member& member) {
    if (member.key == "name") call.name = member.text;
    if (member.key == "arguments") arguments = member.source;
  });
  // Only now, as each reader takes several times the memory of its text.
  if (arguments) call.arguments = decodeArguments(*arguments);
  return call;
}

}  // namespace tessum
