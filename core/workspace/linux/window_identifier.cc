#include "core/workspace/linux/window_identifier.h"

#include <unistd.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <utility>

#include "core/base/text.h"

namespace tessum {
namespace {

std::string nameOfHost() {
  std::array<char, 256> name{};
  gethostname(name.data(), name.size() - 1);
  return name.data();
}

std::optional<std::string> nameOfProcess(std::int32_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  if (!std::getline(file, name) || name.empty()) return std::nullopt;
  return validUtf8(name);
}

}  // namespace

WindowIdentifier::WindowIdentifier(DesktopEntries entries)
    : entries_(std::move(entries)), hostName_(nameOfHost()) {}

const FrontWindow& WindowIdentifier::identify(const WindowDescription& description) {
  if (description != description_) {
    entries_.refresh();
    identified_ = tessum::identify(description, entries_, hostName_, nameOfProcess);
    description_ = description;
  }
  return identified_;
}

}  // namespace tessum
