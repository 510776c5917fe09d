#include "core/workspace/title.h"

#include <utility>

namespace tessum {
namespace {

bool continuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

}  // namespace

std::string cutToLength(std::string text, std::size_t longest) {
  if (text.size() <= longest) return text;
  std::size_t size = longest;
  while (size > 0 && continuesCharacter(text[size])) --size;
  text.resize(size);
  return text;
}

std::optional<std::string> titleFrom(std::string text) {
  if (text.empty()) return std::nullopt;
  return cutToLength(std::move(text), kLongestTitle);
}

}  // namespace tessum
