// Opens things with the user's own applications.

#pragma once

#include <string>

namespace tessum {

// Any thread.
class UrlOpener {
 public:
  virtual ~UrlOpener() = default;

  // Asks the user's desktop to open `url` with the application meant for it, and returns at once.
  // Failures are not reported.
  virtual void open(const std::string& url) const = 0;
};

// The desktop of this system.
class SystemUrlOpener final : public UrlOpener {
 public:
  void open(const std::string& url) const override;

  // The same, but waits up to two seconds to learn whether it worked. False when the desktop has
  // nothing to open it with, or says that it failed.
  [[nodiscard]] bool hasOpened(const std::string& url) const;
};

}  // namespace tessum
