#include "core/mcp/any_codable.h"

namespace tessum {

AnyCodable::AnyCodable() : source_("null") {}

AnyCodable::AnyCodable(json::PaddedView source) : source_(source.text()) {}

AnyCodable AnyCodable::encoded(std::string json) {
  return AnyCodable(json::PaddedString::take(std::move(json)));
}

void AnyCodable::forEachMember(const json::VisitMember& visit) const {
  if (json().starts_with('{')) json::forEachMember(source_.view(), visit);
}

}  // namespace tessum
