#include "core/presence/linux/awake_reasons.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tessum {
namespace {

bool comesBefore(const AwakeReason& a, const AwakeReason& b) {
  return std::tie(a.who, a.why) < std::tie(b.who, b.why);
}

// `text` is valid UTF-8, and so is the result.
void shorten(std::string& text) {
  if (text.size() <= AwakeReasons::kLongestText) return;
  std::size_t end = AwakeReasons::kLongestText;
  const auto isInsideCharacter = [&] {
    return (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80;
  };
  while (end > 0 && isInsideCharacter()) --end;
  text.resize(end);
}

}  // namespace

AwakeReasons::AwakeReasons(std::function<void(const std::vector<AwakeReason>&)> onChange)
    : onChange_(std::move(onChange)) {}

void AwakeReasons::set(const std::string& source, std::vector<AwakeReason> reasons) {
  if (reasons.size() > kMost) reasons.resize(kMost);
  for (AwakeReason& reason : reasons) {
    shorten(reason.who);
    shorten(reason.why);
  }
  listed_[source] = std::move(reasons);

  std::vector<AwakeReason> all;
  for (const auto& [name, list] : listed_) all.insert(all.end(), list.begin(), list.end());
  std::sort(all.begin(), all.end(), comesBefore);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  if (all.size() > kMost) all.resize(kMost);
  if (all == told_) return;
  told_ = std::move(all);
  onChange_(told_);
}

}  // namespace tessum
