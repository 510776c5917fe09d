// `Tessum record`, running on a test's desktop, and the sessions it has written. It sees the
// desktop entries that the test puts into the folder "share" of the desktop's home.

#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/desktop/test_desktop.h"
#include "tests/support/eventually.h"
#include "tests/support/server_program.h"
#include "tests/support/sql.h"

namespace tessum {

class Recorder {
 public:
  using Rows = std::vector<std::string>;

  // Starts it, with additional arguments, and waits until it has created the database.
  explicit Recorder(const TestDesktop& desktop, const std::vector<std::string>& arguments = {})
      : desktop_(desktop),
        process_(desktop.start(desktop.recorderProgram(TESSUM_PROGRAM), allArguments(arguments),
                               {"XDG_DATA_DIRS=" + desktop.home().file("share")})) {
    if (!eventually([&] { return std::filesystem::exists(store()); })) {
      throw std::runtime_error("no store was made: " + process_->errors());
    }
  }

  [[nodiscard]] ChildProcess& process() { return *process_; }
  [[nodiscard]] std::string store() const { return desktop_.dataFolder() + "/activities.db"; }

  // The sessions so far. A reader's lock would make the recorder's writes fail, so this reads a
  // copy; if the copy was made during a write, there are none.
  [[nodiscard]] Rows sessions() const {
    try {
      const std::string copy = desktop_.home().file("copy.db");
      std::filesystem::copy_file(store(), copy, std::filesystem::copy_options::overwrite_existing);
      return Sql(copy).rows(
          "SELECT app_name, bundle_id, title, CASE WHEN end_time IS NULL THEN 'open' "
          "WHEN end_time >= start_time THEN 'closed' ELSE 'crossed' END "
          "FROM activities ORDER BY id");
    } catch (const std::exception&) {
      return {};
    }
  }

  // Whether the sessions become those of `rows`, within a minute.
  [[nodiscard]] bool comesTo(const Rows& rows) const {
    return eventually([&] { return sessions() == rows; });
  }

  // What TessumMCP reports of all sessions, without their times.
  [[nodiscard]] std::string report() const {
    const auto server = desktop_.start(serverProgram(), {});
    server->writeLine(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":)"
                      R"({"name":"search_activities","arguments":{"query":"%"}}})");
    const std::string answer = server->readLine().value_or("");
    EXPECT_EQ(server->finish(), kSuccess);
    std::smatch text;
    EXPECT_TRUE(std::regex_search(answer, text, std::regex(R"re("text":"([^"]*)")re"))) << answer;
    return std::regex_replace(text.str(1), std::regex(R"(  \[[^\]]*\]  \([^)]*\))"), "");
  }

 private:
  static std::vector<std::string> allArguments(const std::vector<std::string>& more) {
    std::vector<std::string> all = {"record", "--no-update-check"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  const TestDesktop& desktop_;
  std::unique_ptr<ChildProcess> process_;
};

}  // namespace tessum
