// A desktop of a test's own, of whatever kind.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// A home folder, and programs that run with it on the desktop. Calls that wait throw
// std::runtime_error after a minute.
class TestDesktop {
 public:
  enum class User {
    self,      // the test's own
    ordinary,  // likewise, but where that is root, one without its powers
  };

  virtual ~TestDesktop() = default;
  TestDesktop(const TestDesktop&) = delete;
  TestDesktop& operator=(const TestDesktop&) = delete;

  // The home folder of the started programs, which holds their data folder.
  [[nodiscard]] const TemporaryFolder& home() const { return home_; }
  [[nodiscard]] std::string dataFolder() const { return home_.file("data/Tessum"); }

  // The host program that records here; `built` unless the desktop lets only a copy of it see its
  // windows.
  [[nodiscard]] virtual std::string recorderProgram(const std::string& built) const {
    return built;
  }

  // Starts a program on this desktop.
  std::unique_ptr<ChildProcess> start(const std::string& program,
                                      const std::vector<std::string>& arguments,
                                      const std::vector<std::string>& environment = {}) const;

  // Runs a program to its end and returns its output, without the last line feed. Throws
  // std::runtime_error when it fails.
  std::string run(const std::string& program, const std::vector<std::string>& arguments) const;

 protected:
  explicit TestDesktop(User user = User::self);

  // The variables that lead programs to the desktop.
  [[nodiscard]] virtual std::vector<std::string> variables() const = 0;

 private:
  const bool dropsPowers_;
  TemporaryFolder home_;
};

}  // namespace tessum
