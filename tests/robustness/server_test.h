// What the tests of this folder share: a user for each, requests and answers.

#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "core/platform/locations.h"
#include "tests/support/child_process.h"
#include "tests/support/environment.h"
#include "tests/support/server_program.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// A call of a tool; `arguments` is a JSON object.
[[nodiscard]] std::string toolCall(std::int64_t id, std::string_view tool,
                                   std::string_view arguments = "{}");

// The call that starts the annotation `text`, which needs no escapes.
[[nodiscard]] std::string annotation(std::int64_t id, std::string_view text);

// The answer to a call of a tool.
struct Answer {
  std::int64_t id = 0;
  bool isError = false;
  std::string text;
};
[[nodiscard]] Answer toAnswer(std::string_view line);

// Whether the answer is the database's error text.
[[nodiscard]] bool isStoreError(const Answer& answer);

// Each test has a home folder of its own, which the programs that it starts use.
class ServerTest : public testing::Test {
 protected:
  [[nodiscard]] const std::string& home() const { return home_.path(); }
  [[nodiscard]] std::string dataFolder() const { return SystemLocations().dataFolder(); }
  [[nodiscard]] std::string databasePath() const { return dataFolder() + "/activities.db"; }

  // Has a server create the database with one annotation in it.
  void makeStore() const;

  // The texts of all annotations, the oldest first.
  [[nodiscard]] std::vector<std::string> storedAnnotations() const;

  // Fails unless SQLite finds the database intact.
  void expectWholeDatabase() const;

 private:
  const TemporaryFolder home_;
  const ScopedVariable homeVariable_{"HOME", home_.path().c_str()};
  const ScopedVariable dataHomeVariable_{"XDG_DATA_HOME", nullptr};
};

// Sends one request and reads its answer; a server that does not answer fails the test.
[[nodiscard]] Answer ask(ChildProcess& server, const std::string& request);

}  // namespace tessum
