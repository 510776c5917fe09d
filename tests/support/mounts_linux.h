// Mounts that only the calling process and its children see, and that end with the last of them.

#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <string>

namespace tessum {

// Gives the process its own mounts. False if the system does not allow it.
[[nodiscard]] inline bool takeOwnMounts() {
  const int scope = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS;
  return unshare(scope) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// Mounts the folder `shown` over `path`. False on failure.
[[nodiscard]] inline bool mountFolder(const std::string& shown, const std::string& path) {
  return mount(shown.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

// Mounts an empty disk of `size`, such as "64k", over `path`. False on failure.
[[nodiscard]] inline bool mountDisk(const std::string& size, const std::string& path) {
  return mount("tessum", path.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

}  // namespace tessum
