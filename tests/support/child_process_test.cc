#include "tests/support/child_process.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace tessum {
namespace {

ChildProcess::Options script(const char* text) {
  return {.arguments = {"-c", text}};
}

TEST(ChildProcess, TalksInLinesAndEndsWithItsInput) {
  ChildProcess cat("cat");
  cat.writeLine("one");
  cat.write("two\nthree");
  EXPECT_EQ(cat.readLine(), "one");
  EXPECT_EQ(cat.readLine(), "two");
  EXPECT_EQ(cat.finish(), kSuccess);
  EXPECT_EQ(cat.readLine(), "three");
  EXPECT_EQ(cat.readLine(), std::nullopt);
}

TEST(ChildProcess, WritesMoreThanPipesHold) {
  ChildProcess cat("cat");
  const std::string bytes(3'000'000, 'x');
  cat.write(bytes);
  cat.closeInput();
  EXPECT_EQ(cat.readRest(), bytes);
}

TEST(ChildProcess, ReportsStatusSignalAndErrors) {
  ChildProcess failing("sh", script("echo no >&2; exit 3"));
  EXPECT_EQ(failing.wait(), (ExitStatus{.code = 3, .signal = {}}));
  EXPECT_EQ(failing.errors(), "no\n");

  ChildProcess killed("cat");
  killed.kill();
  EXPECT_EQ(killed.wait(), (ExitStatus{.code = {}, .signal = SIGKILL}));

  ChildProcess missing("/no/such/program");
  EXPECT_EQ(missing.wait(), (ExitStatus{.code = 127, .signal = {}}));
}

TEST(ChildProcess, DropsWhatAnEndedProgramDoesNotRead) {
  ChildProcess ended("true");
  EXPECT_EQ(ended.wait(), kSuccess);
  ended.writeLine("too late");
  EXPECT_EQ(ended.readLine(), std::nullopt);
}

TEST(ChildProcess, StartsWithItsOwnEnvironmentAndLimits) {
  ChildProcess::Options options = script("echo $GREETING $(ulimit -n)");
  options.environment = {"GREETING=hello"};
  options.prepare = [] {
    const rlimit limit{20, 20};
    setrlimit(RLIMIT_NOFILE, &limit);
  };
  ChildProcess child("sh", options);
  EXPECT_EQ(child.readLine(), "hello 20");
  EXPECT_EQ(child.finish(), kSuccess);
}

}  // namespace
}  // namespace tessum
