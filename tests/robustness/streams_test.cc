#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/robustness/server_test.h"

namespace tessum {
namespace {

const std::string kRequest = toolCall(1, "get_annotations");

// Names the standard streams whose bits, 0 to 2, are set in `streams`.
std::string namesOf(int streams) {
  std::string names;
  if (streams & 1) names += "Input";
  if (streams & 2) names += "Output";
  if (streams & 4) names += "Errors";
  return names.empty() ? "None" : names;
}

class ClosedStreams : public ServerTest, public testing::WithParamInterface<int> {
 protected:
  [[nodiscard]] bool isClosed(int stream) const { return (GetParam() >> stream & 1) != 0; }

  [[nodiscard]] ChildProcess::Options withoutStreams() const {
    return {.prepare = [streams = GetParam()] {
      for (int stream = 0; stream < 3; ++stream) {
        if (streams >> stream & 1) close(stream);
      }
    }};
  }
};

TEST_P(ClosedStreams, AreNeverTheDatabase) {
  makeStore();
  const std::string before = readFile(databasePath());
  ChildProcess server(serverProgram(), withoutStreams());
  server.writeLine(kRequest);
  const ExitStatus end = server.finish();
  const std::string answers = server.readRest();

  EXPECT_EQ(readFile(databasePath()), before);
  if (isClosed(STDIN_FILENO) || isClosed(STDOUT_FILENO)) {
    EXPECT_EQ(answers, "");
    EXPECT_EQ(end, (ExitStatus{.code = {}, .signal = SIGABRT}));
  } else {
    EXPECT_EQ(toAnswer(answers).id, 1);
    EXPECT_EQ(end, kSuccess);
  }
  const bool mustExplain = end != kSuccess && !isClosed(STDERR_FILENO);
  EXPECT_EQ(!server.errors().empty(), mustExplain) << server.errors();
}

TEST_P(ClosedStreams, DoNotKeepAnEmptyInputFromEndingWell) {
  ChildProcess server(serverProgram(), withoutStreams());
  const ExitStatus end = server.finish();
  EXPECT_EQ(end == kSuccess, !isClosed(STDIN_FILENO)) << end;
  EXPECT_EQ(storedAnnotations(), std::vector<std::string>{});
  expectWholeDatabase();
}

INSTANTIATE_TEST_SUITE_P(Robustness, ClosedStreams, testing::Range(0, 8),
                         [](const auto& test) { return namesOf(test.param); });

class BrokenStreams : public ServerTest {};

TEST_F(BrokenStreams, AReadErrorIsNotTheEndOfInput) {
  ChildProcess server(serverProgram(),
                      {.prepare = [] { dup2(open("/", O_RDONLY), STDIN_FILENO); }});
  EXPECT_EQ(server.wait(), (ExitStatus{.code = {}, .signal = SIGABRT}));
  EXPECT_EQ(server.readRest(), "");
  EXPECT_NE(server.errors().find("Cannot read standard input"), std::string::npos)
      << server.errors();
}

TEST_F(BrokenStreams, OutputThatNobodyReadsEndsTheServer) {
  ChildProcess server(serverProgram(), {.prepare = [] {
                        int ends[2];
                        if (pipe(ends) != 0) _exit(1);
                        dup2(ends[1], STDOUT_FILENO);
                        close(ends[0]);
                        close(ends[1]);
                      }});
  server.writeLine(kRequest);
  EXPECT_EQ(server.wait(), (ExitStatus{.code = {}, .signal = SIGPIPE}));
}

TEST_F(BrokenStreams, OutputThatTakesNothingEndsTheServer) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "the system has no /dev/full";
  ChildProcess server(serverProgram(),
                      {.prepare = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); }});
  server.writeLine(kRequest);
  EXPECT_EQ(server.wait(), (ExitStatus{.code = {}, .signal = SIGABRT}));
  EXPECT_NE(server.errors().find("Cannot write standard output"), std::string::npos)
      << server.errors();
}

TEST_F(BrokenStreams, ALineThatMemoryCannotHoldIsNotTheEndOfInput) {
  const ChildProcess::Options withLittleMemory = {.prepare = [] {
    const rlimit limit{rlim_t{64} << 20, rlim_t{64} << 20};
    setrlimit(RLIMIT_AS, &limit);
  }};
  if (ChildProcess(serverProgram(), withLittleMemory).finish() != kSuccess) {
    GTEST_SKIP() << "this build takes more memory only to start";
  }
  ChildProcess server(serverProgram(), withLittleMemory);
  server.writeLine(kRequest);
  ASSERT_TRUE(server.readLine());
  server.write(std::string(std::size_t{100} << 20, ' '));
  EXPECT_EQ(server.finish(), (ExitStatus{.code = {}, .signal = SIGABRT}));
  EXPECT_NE(server.errors().find("bad_alloc"), std::string::npos) << server.errors();
}

}  // namespace
}  // namespace tessum
