#include <chrono>
#include <random>
#include <set>
#include <thread>

#include "tests/robustness/server_test.h"

namespace tessum {
namespace {

class Kill : public ServerTest {};

TEST_F(Kill, LosesNoAnsweredAnnotation) {
  constexpr int kKills = 150;
  constexpr int kRequests = 30;
  constexpr int kMostMicroseconds = 12'000;
  std::mt19937 random(20250304);
  std::uniform_int_distribution<int> microseconds(0, kMostMicroseconds);
  std::set<std::string> answered;
  int unanswered = 0;

  for (int round = 0; round < kKills; ++round) {
    ChildProcess server(serverProgram());
    for (int i = 0; i < kRequests; ++i) {
      server.writeLine(annotation(i, std::to_string(round) + "." + std::to_string(i)));
    }
    const auto first = server.readLine();
    ASSERT_TRUE(first) << server.errors();
    // This waits for nothing: it only varies the moment of the kill.
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    server.kill();
    server.wait();

    int count = 0;
    for (auto line = first; line; line = server.readLine()) {
      const Answer answer = toAnswer(*line);
      ASSERT_FALSE(answer.isError) << answer.text;
      answered.insert(std::to_string(round) + "." + std::to_string(answer.id));
      ++count;
    }
    unanswered += kRequests - count;
    expectWholeDatabase();
  }

  const auto stored = storedAnnotations();
  const std::set<std::string> kept(stored.begin(), stored.end());
  for (const std::string& text : answered) EXPECT_TRUE(kept.contains(text)) << text;
  EXPECT_GT(unanswered, 0) << "no server was killed at work";
}

}  // namespace
}  // namespace tessum
