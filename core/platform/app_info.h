// What the running application says of itself.

#pragma once

#include <optional>
#include <string>

namespace tessum {

// Any thread.
class AppInfo {
 public:
  virtual ~AppInfo() = default;

  // The version of the running application, such as "1.2.0"; absent when it does not say.
  [[nodiscard]] virtual std::optional<std::string> version() const = 0;
};

// The version in the application bundle, where the system has bundles; elsewhere the one that was
// compiled in, which is always there.
class SystemAppInfo final : public AppInfo {
 public:
  [[nodiscard]] std::optional<std::string> version() const override;
};

}  // namespace tessum
