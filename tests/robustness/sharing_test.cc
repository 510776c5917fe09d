#include <sqlite3.h>

#include <array>
#include <set>

#include "tests/robustness/server_test.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

class Sharing : public ServerTest {};

// The call that request number `id` makes.
std::string callOf(std::int64_t id) {
  switch (id % 4) {
    case 0:
      return annotation(id, "note " + std::to_string(id));
    case 1:
      return toolCall(id, "get_activities", R"({"limit":3})");
    case 2:
      return toolCall(id, "search_activities", R"({"query":"Edit","limit":3})");
    default:
      return toolCall(id, "get_app_usage");
  }
}

// Whether the answer begins as a result of its call may.
bool isResultOf(const Answer& answer) {
  static constexpr std::array<std::array<std::string_view, 2>, 4> kBeginnings = {{
      {"Annotation started: note ", "Annotation started: note "},
      {"Activities (", "No activities found."},
      {"Activities (", "No activities found."},
      {"App usage summary (", "No usage data found."},
  }};
  const auto& beginnings = kBeginnings[static_cast<std::size_t>(answer.id) % 4];
  return !answer.isError &&
         (answer.text.starts_with(beginnings[0]) || answer.text.starts_with(beginnings[1]));
}

TEST_F(Sharing, TwoServersAndAWriterAnswerEveryRequest) {
  constexpr int kRequests = 300;
  makeStore();
  std::array<ChildProcess, 2> servers{ChildProcess(serverProgram()), ChildProcess(serverProgram())};
  for (ChildProcess& server : servers) {
    ASSERT_FALSE(ask(server, toolCall(0, "get_annotations")).isError);
  }
  ChildProcess writer(TESSUM_WRITE_SESSIONS);
  ASSERT_EQ(writer.readLine(), "writing") << writer.errors();

  for (ChildProcess& server : servers) {
    for (int id = 0; id < kRequests; ++id) server.writeLine(callOf(id));
    server.closeInput();
  }
  std::multiset<std::string> started{"the first"};
  int results = 0;
  int errors = 0;
  for (ChildProcess& server : servers) {
    for (int id = 0; id < kRequests; ++id) {
      const auto line = server.readLine();
      ASSERT_TRUE(line) << server.errors();
      const Answer answer = toAnswer(*line);
      EXPECT_EQ(answer.id, id);
      EXPECT_TRUE(isResultOf(answer) || isStoreError(answer)) << *line;
      ++(answer.isError ? errors : results);
      if (!answer.isError && id % 4 == 0) started.insert("note " + std::to_string(id));
    }
    EXPECT_EQ(server.readLine(), std::nullopt);
    EXPECT_EQ(server.wait(), kSuccess);
  }
  writer.closeInput();
  const std::string written = writer.readRest();
  EXPECT_EQ(writer.wait(), kSuccess) << writer.errors();

  EXPECT_GT(results, 0);
  RecordProperty("results", results);
  RecordProperty("errors", errors);
  const auto stored = storedAnnotations();
  EXPECT_EQ(std::multiset<std::string>(stored.begin(), stored.end()), started);
  EXPECT_EQ(Sql(databasePath()).row("SELECT count(*) FROM activities") + "\n", written);
  expectWholeDatabase();
}

TEST_F(Sharing, ALockedStoreReadsAsEmptyAndTakesNoNoteUntilItIsFree) {
  makeStore();
  ChildProcess server(serverProgram());
  ASSERT_FALSE(ask(server, toolCall(1, "get_annotations")).isError);
  {
    Sql other(databasePath());
    other.run("BEGIN EXCLUSIVE");
    const Answer empty = ask(server, toolCall(2, "get_annotations"));
    EXPECT_FALSE(empty.isError);
    EXPECT_EQ(empty.text, "No annotations found.");
    const Answer answer = ask(server, annotation(2, "kept out"));
    EXPECT_TRUE(answer.isError);
    EXPECT_EQ(answer.text, "Error: Failed to execute statement: " + sqliteText(SQLITE_BUSY));

    // The schema is locked, too, so a second server stops before its first request.
    ChildProcess second(serverProgram());
    second.writeLine(toolCall(1, "get_annotations"));
    EXPECT_EQ(second.readRest(), "");
    EXPECT_EQ(second.finish(), (ExitStatus{.code = {}, .signal = SIGABRT}));
    EXPECT_NE(second.errors().find(sqliteText(SQLITE_BUSY)), std::string::npos) << second.errors();
  }
  EXPECT_FALSE(ask(server, annotation(3, "let in")).isError);
  EXPECT_EQ(server.finish(), kSuccess);
  EXPECT_EQ(storedAnnotations(), (std::vector<std::string>{"the first", "let in"}));
}

}  // namespace
}  // namespace tessum
