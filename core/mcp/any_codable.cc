#include "core/mcp/any_codable.h"

#include "core/json/number.h"

namespace tessum {

AnyCodable::AnyCodable() : source_("null") {}

AnyCodable::AnyCodable(json::PaddedView source) : source_(source.text()) {}

AnyCodable AnyCodable::encoded(std::string json) {
  return AnyCodable(json::PaddedString::take(std::move(json)));
}

AnyCodable::Kind AnyCodable::kind() const {
  switch (json::kindOf(source_.view())) {
    case json::Kind::null:
      return Kind::null;
    case json::Kind::boolean:
      return Kind::boolean;
    case json::Kind::number:
      if (json::integralValue(json())) return Kind::integer;
      return json::fitsDouble(json()) ? Kind::real : Kind::null;
    case json::Kind::text:
      return Kind::text;
    case json::Kind::array:
      return Kind::array;
    case json::Kind::object:
      break;
  }
  return Kind::object;
}

std::optional<std::int64_t> AnyCodable::integer() const {
  return json::integralValue(json());
}

std::optional<std::string> AnyCodable::text() const {
  if (json::kindOf(source_.view()) != json::Kind::text) return std::nullopt;
  return json::decodeString(source_.view());
}

std::optional<AnyCodable> AnyCodable::member(std::string_view key) const {
  if (json::kindOf(source_.view()) != json::Kind::object) return std::nullopt;
  std::optional<json::PaddedView> found;
  json::forEachMember(source_.view(), [&](std::string_view name, json::PaddedView value) {
    if (name == key) found = value;
  });
  if (!found) return std::nullopt;
  return AnyCodable(*found);
}

}  // namespace tessum
