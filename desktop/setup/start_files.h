// The texts of the files that start the recorder, for a program that is anywhere.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// systemd's unit that runs `program`, an absolute path.
[[nodiscard]] std::string unitFor(const std::string& program);

// The autostart entry that runs `program`.
[[nodiscard]] std::string entryFor(const std::string& program);

// The desktop entry by which KDE Plasma shows its windows to `program`.
[[nodiscard]] std::string windowsEntryFor(const std::string& program);

// launchd's description of an agent that runs `program`.
[[nodiscard]] std::string agentFor(const std::string& program);

// The program that the value of `key`, such as ExecStart, names in a unit or an entry; empty when
// there is none. Knows quotes, but no escapes with a backslash.
[[nodiscard]] std::string startCommand(std::string_view text, std::string_view key);

// Whether a desktop entry says that it counts as deleted, or that it is turned off.
[[nodiscard]] bool isTurnedOffEntry(std::string_view text);

}  // namespace tessum
