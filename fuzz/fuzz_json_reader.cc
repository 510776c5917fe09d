// The JSON reader: both ways of reading agree, and writing preserves everything.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/base/check.h"
#include "core/json/reader.h"
#include "core/json/writer.h"

namespace tessum {
namespace {

std::optional<json::Value> parsed(json::PaddedView text) {
  try {
    return json::parse(text);
  } catch (const json::DecodingError&) {
    return std::nullopt;
  }
}

// The object made of the visited members; absent when the text is rejected.
std::optional<json::Value::Object> visited(json::PaddedView text) {
  json::Value::Object members;
  try {
    json::forEachMember(text, [&](const json::Member& member) {
      const json::Value value = json::parse(member.source);
      TESSUM_CHECK(member.text.has_value() == (value.text() != nullptr),
                   "a member is a text in only one way of reading");
      if (member.text) TESSUM_CHECK(*member.text == *value.text(), "a text is decoded in two ways");
      members.insert_or_assign(std::string(member.key), value);
    });
  } catch (const json::DecodingError&) {
    return std::nullopt;
  }
  return members;
}

}  // namespace
}  // namespace tessum

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  const json::PaddedString text({reinterpret_cast<const char*>(data), size});
  const auto value = parsed(text.view());
  const auto members = visited(text.view());
  const auto* object = value ? value->object() : nullptr;
  TESSUM_CHECK((object != nullptr) == members.has_value(),
               "only one way of reading accepts an object");
  if (!value) return 0;
  if (object != nullptr) TESSUM_CHECK(*object == *members, "an object is read in two ways");

  const std::string written = json::compact(*value);
  TESSUM_CHECK(json::parse(written) == *value, "the compact form reads as another value");
  TESSUM_CHECK(json::compact(json::parse(written)) == written, "the compact form is not stable");
  TESSUM_CHECK(json::parse(json::pretty(*value)) == *value, "the long form reads as another value");
  return 0;
}
