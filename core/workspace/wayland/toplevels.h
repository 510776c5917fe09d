// The windows of a Wayland desktop, and which of them is active.

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// What a compositor reports of a window; texts are valid UTF-8, empty when it reports none.
struct WaylandToplevel {
  std::uint32_t id = 0;
  std::string appId;                    // at most kLongestName bytes
  std::string title;                    // at most kLongestTitle bytes
  std::optional<std::int32_t> process;  // above 0

  friend bool operator==(const WaylandToplevel&, const WaylandToplevel&) = default;
};

// Changes of a window count once they are committed. When the focus moves from one window to
// another, the compositor reports each by itself, so for a moment both or none may be active: of
// several, the one that was activated last counts. Events of unknown windows, in any order, change
// nothing. Not thread-safe.
class WaylandToplevels {
 public:
  using Id = std::uint32_t;

  // A new window.
  Id add();

  // The window is gone.
  void remove(Id id);

  // Texts may be of any length and hold any bytes.
  void setAppId(Id id, std::string_view appId);
  void setTitle(Id id, std::string_view title);
  void setProcess(Id id, std::uint32_t process);  // 0 when the compositor does not know it
  void setActive(Id id, bool isActive);

  void commit(Id id);

  // What was active since the last call, one after another; absent where nothing was.
  [[nodiscard]] std::vector<std::optional<WaylandToplevel>> takeChanges();

 private:
  struct Window {
    WaylandToplevel set;
    WaylandToplevel committed;
    bool isSetActive = false;
    std::uint64_t activation = 0;  // 0 while it is not active
  };

  Window* find(Id id);
  void noteChange();

  std::map<Id, Window> windows_;
  std::map<std::uint64_t, Id> active_;  // by activation
  Id lastId_ = 0;
  std::uint64_t lastActivation_ = 0;
  std::optional<WaylandToplevel> latest_;  // as it was last noted
  std::vector<std::optional<WaylandToplevel>> changes_;
};

}  // namespace tessum
