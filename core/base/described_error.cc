#include "core/base/described_error.h"

namespace tessum {

std::string descriptionOf(const std::exception& error) {
  const auto* described = dynamic_cast<const DescribedError*>(&error);
  return described != nullptr ? described->description() : error.what();
}

}  // namespace tessum
