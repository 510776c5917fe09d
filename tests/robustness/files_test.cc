// The database in trouble: each request gets its result or the database's error text, or the server
// stops before it reads one. Everything works again once the cause is gone.

#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/robustness/server_test.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr ExitStatus kAborted{.code = {}, .signal = SIGABRT};

class Files : public ServerTest {
 protected:
  // Calls each tool once. Each answer is a result or the database's error text.
  void expectAnswers(ChildProcess& server) {
    for (const char* tool :
         {"get_activities", "search_activities", "get_app_usage", "annotate", "get_annotations"}) {
      const Answer answer =
          ask(server, toolCall(++lastID_, tool, R"({"text":"in trouble","query":""})"));
      EXPECT_EQ(answer.id, lastID_);
      EXPECT_TRUE(!answer.isError || isStoreError(answer)) << tool << ": " << answer.text;
    }
  }

  void expectAnnotationFails(ChildProcess& server) {
    const Answer answer = ask(server, annotation(++lastID_, "not stored"));
    EXPECT_TRUE(isStoreError(answer)) << answer.text;
  }

  // All five tools work.
  void expectHealthy(ChildProcess& server) {
    for (const char* tool : {"get_activities", "search_activities", "get_app_usage", "annotate"}) {
      const Answer answer =
          ask(server, toolCall(++lastID_, tool, R"({"text":"healthy","query":""})"));
      EXPECT_FALSE(answer.isError) << tool << ": " << answer.text;
    }
    const Answer answer = ask(server, toolCall(++lastID_, "get_annotations"));
    EXPECT_NE(answer.text.find("\u2022 healthy  ["), std::string::npos) << answer.text;
  }

  void expectANewServerIsHealthy() {
    ChildProcess server(serverProgram());
    expectHealthy(server);
    EXPECT_EQ(server.finish(), kSuccess);
    expectWholeDatabase();
  }

  // The server cannot start: it says why and answers nothing.
  static void expectEarlyStop(ChildProcess& server) {
    server.writeLine(toolCall(1, "get_annotations"));
    EXPECT_EQ(server.finish(), kAborted);
    EXPECT_EQ(server.readRest(), "");
    EXPECT_NE(server.errors().find("Failed to"), std::string::npos) << server.errors();
  }

  [[nodiscard]] std::string elsewhere() const { return home() + "/elsewhere.db"; }

 private:
  std::int64_t lastID_ = 0;
};

////////////////////////////////////////////////////////////////////////////////////////////////
// Nothing can be written.

TEST_F(Files, AFileThatMayNotGrowKeepsWhatWasAnswered) {
  makeStore();
  ChildProcess server(serverProgram(), {.prepare = [] {
                        std::signal(SIGXFSZ, SIG_IGN);  // makes it an error, like a full disk
                        const rlimit limit{64 * 1024, 64 * 1024};
                        setrlimit(RLIMIT_FSIZE, &limit);
                      }});
  std::vector<std::string> stored{"the first"};
  Answer answer;
  for (int i = 0; i < 100 && !answer.isError; ++i) {
    const std::string text = std::to_string(i) + std::string(4000, '.');
    answer = ask(server, annotation(i, text));
    if (!answer.isError) stored.push_back(text);
  }
  EXPECT_TRUE(isStoreError(answer)) << answer.text;
  EXPECT_GT(stored.size(), 2U);
  expectAnswers(server);
  EXPECT_EQ(server.finish(), kSuccess);

  const auto kept = storedAnnotations();
  ASSERT_GE(kept.size(), stored.size());
  EXPECT_TRUE(std::equal(stored.begin(), stored.end(), kept.begin()));
  expectANewServerIsHealthy();
}

TEST_F(Files, AFullDiskIsAnErrorUntilThereIsRoomAgain) {
  // A small disk that only the server sees. It is mounted as root of a user namespace.
  const std::string disk = home() + "/disk";
  fs::create_directory(disk);
  ChildProcess server("unshare",
                      {.arguments = {"--user", "--map-root-user", "--mount", "sh", "-c",
                                     R"(mount -t tmpfs -o size=256k tessum "$1" && exec "$0")",
                                     serverProgram(), disk},
                       .environment = {"XDG_DATA_HOME=" + disk}});
  server.writeLine(annotation(1, "the first"));
  if (!server.readLine()) GTEST_SKIP() << "no disk of its own: " << server.errors();
  const std::string seenFromHere = "/proc/" + std::to_string(server.id()) + "/root" + disk;
  const std::string filler = seenFromHere + "/filler";
  if (access((seenFromHere + "/Tessum").c_str(), W_OK) != 0) {
    GTEST_SKIP() << "the disk cannot be filled from outside";
  }

  std::ofstream(filler) << std::string(1 << 20, 'x');
  Answer answer;
  for (int i = 0; i < 100 && !answer.isError; ++i) {
    answer = ask(server, annotation(i, std::string(4000, '.')));
  }
  EXPECT_TRUE(isStoreError(answer)) << answer.text;
  EXPECT_NE(answer.text.find(sqliteText(SQLITE_FULL)), std::string::npos) << answer.text;
  expectAnswers(server);

  fs::remove(filler);
  expectHealthy(server);
  fs::copy_file(seenFromHere + "/Tessum/activities.db", elsewhere());
  EXPECT_EQ(Sql(elsewhere()).row("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(server.finish(), kSuccess);
}

// Permissions mean nothing to root. So root gives the home folder to another user, and runs a copy
// of the server that lies in it as that user.
class Permissions : public Files {
 protected:
  Permissions() {
    fs::copy_file(serverProgram(), program_);
    giveAway();
  }

  ~Permissions() override { fs::permissions(dataFolder(), fs::perms::owner_all); }

  // Gives what root made in the home folder to the user.
  void giveAway() const {
    if (geteuid() != 0) return;
    chownTo(home());
    for (const auto& entry : fs::recursive_directory_iterator(home())) chownTo(entry.path());
  }

  [[nodiscard]] ChildProcess::Options asUser() const {
    return {.prepare = [] {
      if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(1);
    }};
  }

  const std::string program_ = home() + "/server";

 private:
  static constexpr unsigned kNobody = 65534;

  static void chownTo(const fs::path& path) {
    EXPECT_EQ(chown(path.c_str(), kNobody, kNobody), 0) << path;
  }
};

TEST_F(Permissions, AReadOnlyFolderIsAnErrorUntilItIsWritable) {
  ChildProcess server(program_, asUser());
  ASSERT_FALSE(ask(server, annotation(1, "the first")).isError) << server.errors();

  fs::permissions(dataFolder(), fs::perms::owner_read | fs::perms::owner_exec);
  expectAnnotationFails(server);
  expectAnswers(server);
  {
    ChildProcess second(program_, asUser());
    expectAnswers(second);
    EXPECT_EQ(second.finish(), kSuccess);
  }

  fs::permissions(dataFolder(), fs::perms::owner_all);
  expectHealthy(server);
  EXPECT_EQ(server.finish(), kSuccess);
  expectWholeDatabase();
}

TEST_F(Permissions, AFreshStoreInAReadOnlyFolderIsAnEarlyStop) {
  fs::create_directories(dataFolder());
  giveAway();
  fs::permissions(dataFolder(), fs::perms::owner_read | fs::perms::owner_exec);
  ChildProcess server(program_, asUser());
  expectEarlyStop(server);

  fs::permissions(dataFolder(), fs::perms::owner_all);
  ChildProcess second(program_, asUser());
  expectHealthy(second);
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Too few descriptors.

class Descriptors : public Files, public testing::WithParamInterface<unsigned> {};

TEST_P(Descriptors, TooFewAreAnErrorOrAnEarlyStop) {
  makeStore();
  ChildProcess server(serverProgram(), {.prepare = [count = GetParam()] {
                        const rlimit limit{count, count};
                        setrlimit(RLIMIT_NOFILE, &limit);
                      }});
  server.writeLine(annotation(1, "one more"));
  const auto line = server.readLine();
  if (line) {
    const Answer answer = toAnswer(*line);
    EXPECT_TRUE(!answer.isError || isStoreError(answer)) << answer.text;
    expectAnswers(server);
    EXPECT_EQ(server.finish(), kSuccess);
  } else {
    EXPECT_NE(server.wait(), kSuccess);
    EXPECT_NE(server.errors(), "");
  }
  expectANewServerIsHealthy();
}

INSTANTIATE_TEST_SUITE_P(Robustness, Descriptors, testing::Range(3U, 8U));

////////////////////////////////////////////////////////////////////////////////////////////////
// The database changes under the server.

TEST_F(Files, ADeletedDatabaseIsAnErrorAndTheNextServerMakesAnother) {
  makeStore();
  ChildProcess server(serverProgram());
  expectHealthy(server);
  fs::remove(databasePath());
  expectAnnotationFails(server);
  expectAnswers(server);
  EXPECT_EQ(server.finish(), kSuccess);
  expectANewServerIsHealthy();
}

TEST_F(Files, AnotherDatabaseInItsPlaceIsAnErrorUntilTheFirstIsBack) {
  makeStore();
  ChildProcess server(serverProgram());
  expectHealthy(server);
  fs::rename(databasePath(), elsewhere());
  makeStore();
  expectAnnotationFails(server);
  expectAnswers(server);
  expectANewServerIsHealthy();

  fs::rename(elsewhere(), databasePath());
  expectHealthy(server);
  EXPECT_EQ(server.finish(), kSuccess);
  expectWholeDatabase();
}

class Damage : public Files, public testing::WithParamInterface<const char*> {
 protected:
  // `whole` with the damage that the parameter names.
  [[nodiscard]] static std::string damaged(const std::string& whole) {
    const std::string_view kind = GetParam();
    if (kind == "Emptied") return {};
    if (kind == "CutInTheMiddle") return whole.substr(0, whole.size() / 2);
    if (kind == "CutInThePage") return whole.substr(0, 5000);
    if (kind == "TurnedIntoText") return std::string(whole.size(), 'x');
    return whole.substr(0, 4096) + std::string(whole.size() - 4096, '\0');  // OnlyTheFirstPage
  }

  // Keeps the file itself, which the server has open.
  void overwriteDatabase(const std::string& bytes) const { writeFile(databasePath(), bytes); }
};

TEST_P(Damage, IsAnErrorUntilItIsRepaired) {
  makeStore();
  ChildProcess server(serverProgram());
  expectHealthy(server);
  const std::string whole = readFile(databasePath());

  overwriteDatabase(damaged(whole));
  expectAnswers(server);

  // A server that starts now answers, or says why it cannot start.
  {
    ChildProcess second(serverProgram());
    second.writeLine(toolCall(1, "get_activities"));
    const auto line = second.readLine();
    const ExitStatus end = second.finish();
    EXPECT_EQ(end, line ? kSuccess : kAborted) << second.errors();
  }

  // SQLite notices changes by a counter in the file, and the repair restores the old count: the
  // running server may see the repair only after the next write by anyone.
  overwriteDatabase(whole);
  expectANewServerIsHealthy();
  expectHealthy(server);
  EXPECT_EQ(server.finish(), kSuccess);
  expectWholeDatabase();
}

INSTANTIATE_TEST_SUITE_P(Robustness, Damage,
                         testing::Values("Emptied", "CutInTheMiddle", "CutInThePage",
                                         "TurnedIntoText", "OnlyTheFirstPage"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
}  // namespace tessum
