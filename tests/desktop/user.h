// A user with a temporary home folder who runs the host program.

#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/store/database.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// The outcome of a program's run.
struct Outcome {
  int status = -1;  // -1 when it was stopped by a signal
  std::string output;
  std::string errors;
};

// Has an empty home folder, the time zone UTC, a locale with UTF-8 and no display. Not thread-safe.
class User {
 public:
  User();

  // Sets a variable for the programs that are run from now on.
  void set(const std::string& variable, const std::string& value) { variables_[variable] = value; }

  [[nodiscard]] std::string file(std::string_view name) const { return home_.file(name); }
  [[nodiscard]] std::string dataFolder() const { return file("data/Tessum"); }
  [[nodiscard]] std::string historyPath() const { return dataFolder() + "/activities.db"; }

  // Makes `text` the user's settings.
  void writeSettings(const std::string& text) const;

  // The user's history, made where it is missing.
  [[nodiscard]] Database database() const;

  // Adds a session to the history; `title` and `end` are null where it has none.
  void addSession(const char* app, const char* title, const char* start, const char* end) const;

  // Starts the host program with `arguments`.
  [[nodiscard]] std::unique_ptr<ChildProcess> start(
      const std::vector<std::string>& arguments) const;

  // Runs the host program with `arguments` and `input` until it ends.
  [[nodiscard]] Outcome run(const std::vector<std::string>& arguments,
                            std::string_view input = "") const;

  // The same without root's power to ignore file permissions, which tests may have.
  [[nodiscard]] Outcome runWithoutPowers(const std::vector<std::string>& arguments) const;

  // The same with its standard output on a terminal of `columns`.
  [[nodiscard]] Outcome runOnTerminal(const std::vector<std::string>& arguments,
                                      unsigned short columns) const;

  // The variables as a started program takes them.
  [[nodiscard]] std::vector<std::string> environment() const;

 private:
  TemporaryFolder home_;
  std::map<std::string, std::string> variables_;
};

// Drops, for good, root's power to ignore file permissions, for a program that is about to start.
void dropPowers();

// The host program as this build made it.
[[nodiscard]] std::string hostProgram();

// Closes the input of `program`, waits for it and returns its outcome.
[[nodiscard]] Outcome outcomeOf(ChildProcess& program);

// The moment written in `text`, such as 2025-03-04T09:00:00Z.
[[nodiscard]] Date at(std::string_view text);

// Whether `part` is in `text`.
[[nodiscard]] testing::AssertionResult contains(const std::string& text, const std::string& part);

// The lines of `text`.
[[nodiscard]] std::vector<std::string> linesOf(const std::string& text);

}  // namespace tessum
