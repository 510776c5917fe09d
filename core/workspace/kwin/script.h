// The script that KWin runs for us.

#pragma once

#include <string>

namespace tessum {

inline constexpr char kKWinScriptPath[] = "/com/tessum/FocusedWindow";
inline constexpr char kKWinScriptInterface[] = "com.tessum.FocusedWindow";
inline constexpr char kKWinScriptMember[] = "Show";

// The text of the script for KWin 5 and 6. It calls kKWinScriptMember of the program on the bus
// whose unique name is `destination`, at once and whenever another window becomes active or the
// active one changes. Each call holds five texts, which are empty while no window is active: the
// name of its desktop entry, its instance, its class, its title and the number of its process.
[[nodiscard]] std::string kwinScript(const std::string& destination);

}  // namespace tessum
