#include "desktop/endpoint/endpoint_process.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/fakes/fake_clock.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// A shell in place of the endpoint: it notes each start in a file.
class EndpointProcessTest : public testing::Test {
 protected:
  void open(const std::string& commands) {
    process_.emplace(std::vector<std::string>{"sh", "-c", "echo >> " + starts_ + "\n" + commands},
                     loop_, steady_, [this](const std::string& line) { said_.push_back(line); });
  }

  [[nodiscard]] std::size_t starts() const { return std::filesystem::file_size(starts_); }

  // Waits until it has ended and said so `count` times.
  void awaitEnd(std::size_t count) {
    ASSERT_TRUE(loop_.runUntil([&] { return said_.size() == count; }));
  }

  const TemporaryFolder folder_;
  const std::string starts_ = folder_.file("starts");
  FakeClock clock_;
  FakeSteadyClock steady_{clock_};
  FakeMainLoop loop_{clock_};
  std::vector<std::string> said_;
  std::optional<EndpointProcess> process_;
};

std::string endedFor(const std::string& seconds) {
  return "The endpoint for assistants has ended; it starts again in " + seconds + " s.";
}

TEST_F(EndpointProcessTest, SaysWhereItIsFound) {
  open("printf http://; printf 'here\\n'; cat");
  EXPECT_EQ(process_->url(), "http://here");
  EXPECT_EQ(starts(), 1U);
}

TEST_F(EndpointProcessTest, ComesBackEverMoreSlowly) {
  open("echo here; [ $(wc -l < " + starts_ + ") -lt 20 ] || cat");
  const char* const delays[] = {"1", "2", "4", "8", "16", "32", "60", "60"};
  std::size_t count = 0;
  for (const char* delay : delays) {
    awaitEnd(++count);
    EXPECT_EQ(said_.back(), endedFor(delay));
    loop_.advance(std::stod(delay) - 0.5);
    EXPECT_EQ(starts(), count);
    loop_.advance(0.5);
  }
  awaitEnd(++count);
}

TEST_F(EndpointProcessTest, ComesBackAtOnceWhenItHasLasted) {
  ASSERT_EQ(mkfifo(folder_.file("end").c_str(), 0600), 0);
  open("echo here; if [ $(wc -l < " + starts_ + ") -eq 3 ]; then cat " + folder_.file("end") +
       "; fi");
  awaitEnd(1);
  loop_.advance(1);
  awaitEnd(2);
  loop_.advance(2);
  EXPECT_TRUE(loop_.runUntil([&] { return starts() == 3; }));
  loop_.advance(60);
  writeFile(folder_.file("end"), "");
  awaitEnd(3);
  EXPECT_EQ(said_.back(), endedFor("1"));
}

TEST_F(EndpointProcessTest, EndsWithTheObjectAndMayFinishFirst) {
  open("echo here; cat; echo finished > " + folder_.file("finished"));
  process_.reset();
  EXPECT_EQ(readFile(folder_.file("finished")), "finished\n");
}

TEST_F(EndpointProcessTest, IsKilledWhenItDoesNotEnd) {
  open("echo $$; exec sleep 600");
  const pid_t id = std::stoi(process_->url());
  process_.reset();
  EXPECT_EQ(kill(id, 0), -1);
}

TEST_F(EndpointProcessTest, FailsWhenItDoesNotOpen) {
  EXPECT_THROW(open("exit 1"), std::runtime_error);
  EXPECT_EQ(starts(), 1U);
  EXPECT_THROW(EndpointProcess({"/nowhere/program"}, loop_, steady_, nullptr), std::system_error);
}

TEST_F(EndpointProcessTest, ComesBackWhenItCouldNotBeStarted) {
  const std::string program = folder_.file("program");
  writeFile(program, "#!/bin/sh\necho here\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  process_.emplace(std::vector<std::string>{program}, loop_, steady_,
                   [this](const std::string& line) { said_.push_back(line); });
  std::filesystem::rename(program, program + ".away");
  awaitEnd(1);
  loop_.advance(1);
  ASSERT_EQ(said_.size(), 3U);
  EXPECT_TRUE(said_[1].starts_with("Cannot start " + program)) << said_[1];
  EXPECT_EQ(said_[2], endedFor("2"));
}

}  // namespace
}  // namespace tessum
