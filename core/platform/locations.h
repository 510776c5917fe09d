// Where the user's files are.

#pragma once

#include <optional>
#include <string>

namespace tessum {

// All paths are absolute, without a trailing slash. Any thread.
class Locations {
 public:
  virtual ~Locations() = default;

  // The user's home folder. A user without one stops the process.
  [[nodiscard]] virtual std::string homeFolder() const = 0;

  // The folder of the history and the downloaded updates, named "Tessum" and below the user's
  // folder for the data of applications. It need not exist yet.
  [[nodiscard]] virtual std::string dataFolder() const = 0;

  // The folder in which the user's applications keep their settings, each in a folder of its own.
  // It need not exist yet.
  [[nodiscard]] virtual std::string configFolder() const = 0;

  // The running program's own file; absent when the system does not tell.
  [[nodiscard]] virtual std::optional<std::string> executablePath() const = 0;
};

// The locations of this system, looked up at each call.
class SystemLocations final : public Locations {
 public:
  [[nodiscard]] std::string homeFolder() const override;
  [[nodiscard]] std::string dataFolder() const override;
  [[nodiscard]] std::string configFolder() const override;
  [[nodiscard]] std::optional<std::string> executablePath() const override;
};

}  // namespace tessum
