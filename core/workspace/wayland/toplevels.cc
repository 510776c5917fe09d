#include "core/workspace/wayland/toplevels.h"

#include <utility>

#include "core/base/text.h"
#include "core/workspace/title.h"

namespace tessum {

WaylandToplevels::Id WaylandToplevels::add() {
  const Id id = ++lastId_;
  windows_[id].set.id = id;
  return id;
}

void WaylandToplevels::remove(Id id) {
  const Window* window = find(id);
  if (window == nullptr) return;
  active_.erase(window->activation);
  windows_.erase(id);
  noteChange();
}

void WaylandToplevels::setAppId(Id id, std::string_view appId) {
  if (auto* window = find(id)) window->set.appId = cutToLength(validUtf8(appId), kLongestName);
}

void WaylandToplevels::setTitle(Id id, std::string_view title) {
  if (auto* window = find(id)) window->set.title = cutToLength(validUtf8(title), kLongestTitle);
}

void WaylandToplevels::setProcess(Id id, std::uint32_t process) {
  auto* window = find(id);
  if (window == nullptr) return;
  window->set.process.reset();
  if (process != 0 && std::in_range<std::int32_t>(process)) {
    window->set.process = static_cast<std::int32_t>(process);
  }
}

void WaylandToplevels::setActive(Id id, bool isActive) {
  if (auto* window = find(id)) window->isSetActive = isActive;
}

void WaylandToplevels::commit(Id id) {
  auto* window = find(id);
  if (window == nullptr) return;
  window->committed = window->set;
  const bool wasActive = window->activation != 0;
  if (window->isSetActive && !wasActive) {
    window->activation = ++lastActivation_;
    active_[window->activation] = id;
  } else if (!window->isSetActive && wasActive) {
    active_.erase(std::exchange(window->activation, 0));
  }
  noteChange();
}

std::vector<std::optional<WaylandToplevel>> WaylandToplevels::takeChanges() {
  return std::exchange(changes_, {});
}

WaylandToplevels::Window* WaylandToplevels::find(Id id) {
  const auto found = windows_.find(id);
  return found == windows_.end() ? nullptr : &found->second;
}

void WaylandToplevels::noteChange() {
  if (active_.empty()) {
    if (!latest_) return;
    latest_.reset();
  } else {
    const auto& active = windows_.at(active_.rbegin()->second).committed;
    if (latest_ == active) return;
    latest_ = active;
  }
  changes_.push_back(latest_);
}

}  // namespace tessum
