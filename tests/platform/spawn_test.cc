#include "core/platform/spawn.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>

#include "core/platform/descriptor.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// What the shell's `commands` write to standard output, when started by startProgram().
std::string outputOf(const std::string& commands) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  const Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);
  const pid_t process = startProgram({"sh", "-c", commands}, {.output = writeEnd.number()});
  EXPECT_EQ(writeEnd.close(), 0);
  std::string output;
  char buffer[1000];
  ssize_t count = 0;
  while ((count = read(readEnd.number(), buffer, sizeof buffer)) > 0) {
    output.append(buffer, static_cast<std::size_t>(count));
  }
  waitForProgram(process);
  return output;
}

TEST(StartProgram, PassesOnOnlyTheStandardStreams) {
  // Two that a program keeps by default: one beside the standard streams, one far from them.
  const Descriptor near(open("/dev/null", O_RDONLY));
  const Descriptor far(fcntl(near.number(), F_DUPFD, 200));
  ASSERT_GE(far.number(), 200);
  EXPECT_EQ(outputOf("ls /dev/fd/"), "0\n1\n2\n3\n") << "3 is the folder that is being listed";
}

TEST(StartProgram, ConnectsTheStandardStreams) {
  const TemporaryFolder folder;
  writeFile(folder.file("input"), "asked\n");
  const Descriptor input(open(folder.file("input").c_str(), O_RDONLY));
  const Descriptor errors(open(folder.file("errors").c_str(), O_WRONLY | O_CREAT, 0600));
  const Descriptor output(open(folder.file("output").c_str(), O_WRONLY | O_CREAT, 0600));
  waitForProgram(startProgram(
      {"sh", "-c", "cat; echo told; echo complained >&2"},
      {.input = input.number(), .output = output.number(), .errors = errors.number()}));
  EXPECT_EQ(readFile(folder.file("output")), "asked\ntold\n");
  EXPECT_EQ(readFile(folder.file("errors")), "complained\n");
}

TEST(StartProgram, HasTheStreamsThatItIsNotGivenLeadNowhere) {
  const TemporaryFolder folder;
  waitForProgram(startProgram(
      {"sh", "-c",
       "cat && echo told && echo complained >&2 && echo both > '" + folder.file("result") + "'"}));
  EXPECT_EQ(readFile(folder.file("result")), "both\n");
}

TEST(StartProgram, GivesTheProgramTheUsualTreatmentOfSignals) {
  const auto before = std::signal(SIGTERM, SIG_IGN);
  EXPECT_EQ(outputOf("kill -TERM $$; echo survived"), "");
  std::signal(SIGTERM, before);
}

TEST(StartProgram, GivesTheProgramASessionOfItsOwn) {
  const pid_t process = startProgram({"sleep", "60"});
  EXPECT_EQ(getsid(process), process);
  kill(process, SIGKILL);
  waitForProgram(process);
}

TEST(StartProgram, SaysWhichProgramItCannotStart) {
  try {
    waitForProgram(startProgram({"/nowhere/program", "argument"}));
    FAIL() << "started a program that does not exist";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    EXPECT_TRUE(std::string(error.what()).starts_with("Cannot start /nowhere/program: "));
  }
}

}  // namespace
}  // namespace tessum
