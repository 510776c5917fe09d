// Runs the host program as a person does, in a home of its own.

#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/platform/calendar.h"
#include "core/store/database.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// What a program left behind.
struct Outcome {
  int status = -1;  // 128 and the signal's number when it was stopped by one
  std::string output;
  std::string errors;
};

// A user with an empty home folder and the time zone UTC, unless a test sets another one.
class User {
 public:
  User();

  // The variables of the user's programs; a test may add its own.
  std::map<std::string, std::string> environment;

  [[nodiscard]] const std::string& home() const { return home_.path(); }
  [[nodiscard]] std::string dataFolder() const { return home_.file("data/Tessum"); }
  [[nodiscard]] std::string recordPath() const { return dataFolder() + "/activities.db"; }

  // The user's record, created where it is missing.
  [[nodiscard]] Database record() const;

  // Runs the host program with `arguments` and `input` until it ends.
  [[nodiscard]] Outcome run(const std::vector<std::string>& arguments,
                            const std::string& input = "") const;

  // The same with its output on a terminal of `columns`, whose text is the output.
  [[nodiscard]] Outcome runOnTerminal(const std::vector<std::string>& arguments,
                                      unsigned short columns) const;

  // Runs another program, found by its name.
  [[nodiscard]] Outcome runOther(const std::vector<std::string>& command,
                                 const std::string& input = "") const;

 private:
  TemporaryFolder home_;
};

}  // namespace tessum
