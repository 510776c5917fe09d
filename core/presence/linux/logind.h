// logind's names on the bus.

#pragma once

namespace tessum::logind {

inline constexpr char kName[] = "org.freedesktop.login1";
inline constexpr char kPath[] = "/org/freedesktop/login1";
inline constexpr char kManager[] = "org.freedesktop.login1.Manager";
inline constexpr char kSession[] = "org.freedesktop.login1.Session";

}  // namespace tessum::logind
