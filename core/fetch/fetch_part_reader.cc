#include "core/fetch/fetch_part_reader.h"

#include <cstring>

namespace tessum {

void FetchPartReader::add(std::string_view bytes) {
  bytes_.erase(0, at_);
  at_ = 0;
  bytes_.append(bytes);
}

std::optional<FetchPartReader::Part> FetchPartReader::next() {
  const std::string_view rest = std::string_view(bytes_).substr(at_);
  FetchPartHeader header{};
  if (rest.size() < sizeof header) return std::nullopt;
  std::memcpy(&header, rest.data(), sizeof header);
  if (header.kind > FetchPart::success || header.size > kLargestFetchPart) throw BadFetchPart();
  const bool isHere = header.kind != FetchPart::body || body_ == Body::amongTheParts;
  const std::size_t size = isHere ? header.size : 0;
  if (rest.size() - sizeof header < size) return std::nullopt;
  at_ += sizeof header + size;
  return Part{header.kind, header.size, rest.substr(sizeof header, size)};
}

}  // namespace tessum
