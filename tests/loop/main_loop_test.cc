#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <thread>

#include "core/loop/system_main_loop.h"
#include "core/platform/descriptor.h"

namespace tessum {
namespace {

class MainLoopTest : public testing::Test {
 protected:
  // Runs the loop until something quits it; fails the test after a minute.
  void run() {
    loop_.startTimer(60, [this] {
      ADD_FAILURE() << "nothing ended the loop";
      loop_.quit();
    });
    loop_.run();
  }

  SystemMainLoop loop_;
};

TEST_F(MainLoopTest, RunsPostedTasksInTheirOrder) {
  std::string order;
  loop_.post([&] {
    order += 'a';
    loop_.post([&] {
      order += 'c';
      loop_.quit();
    });
    order += 'A';
  });
  loop_.post([&] { order += 'b'; });
  EXPECT_EQ(order, "");
  run();
  EXPECT_EQ(order, "aAbc");
}

TEST_F(MainLoopTest, RunsTasksOfOtherThreadsOnItsOwn) {
  std::thread::id ranOn;
  std::thread other([&] {
    loop_.post([&] {
      ranOn = std::this_thread::get_id();
      loop_.quit();
    });
  });
  run();
  other.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(MainLoopTest, ATaskThatStillWaitsAtTheEndNeverRuns) {
  bool hasRun = false;
  {
    SystemMainLoop loop;
    loop.post([&] { loop.quit(); });
    loop.post([&] { hasRun = true; });
    loop.run();
  }
  EXPECT_FALSE(hasRun);
}

TEST_F(MainLoopTest, QuitBeforeRunLetsItReturnAtOnce) {
  loop_.quit();
  run();
  bool hasRun = false;
  loop_.post([&] {
    hasRun = true;
    loop_.quit();
  });
  run();
  EXPECT_TRUE(hasRun) << "the second run is a new one";
}

TEST_F(MainLoopTest, QuitFromAnotherThreadEndsAnIdleLoop) {
  std::thread other([&] { loop_.quit(); });
  run();
  other.join();
}

TEST_F(MainLoopTest, ATimerRepeatsNotBeforeItsTime) {
  const auto start = std::chrono::steady_clock::now();
  int count = 0;
  loop_.startTimer(0.01, [&] {
    if (++count == 3) loop_.quit();
  });
  run();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
}

TEST_F(MainLoopTest, ALateTimerIsNotMadeUpFor) {
  int count = 0;
  loop_.startTimer(0.01, [&] {
    if (++count == 1) std::this_thread::sleep_for(std::chrono::milliseconds(200));
  });
  loop_.startTimer(0.2, [&] { loop_.quit(); });
  run();
  EXPECT_LE(count, 3) << "20 times went by while it ran";
}

TEST_F(MainLoopTest, ATimerCanEndItselfAndAnother) {
  int first = 0;
  int second = 0;
  SystemMainLoop::TimerToken firstToken{};
  SystemMainLoop::TimerToken secondToken{};
  firstToken = loop_.startTimer(0.01, [&] {
    ++first;
    loop_.invalidateTimer(firstToken);
    loop_.invalidateTimer(secondToken);
    loop_.invalidateTimer(secondToken);
    loop_.startTimer(0.05, [&] { loop_.quit(); });
  });
  secondToken = loop_.startTimer(0.01, [&] { ++second; });
  run();
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 0);
}

TEST_F(MainLoopTest, RunsATaskOnceAfterAWhile) {
  const auto start = std::chrono::steady_clock::now();
  int count = 0;
  loop_.runAfter(0.02, [&] { ++count; });
  const auto cancelled = loop_.runAfter(0.02, [&] { ADD_FAILURE() << "it was invalidated"; });
  loop_.invalidateTimer(cancelled);
  loop_.runAfter(0.06, [&] { loop_.quit(); });
  run();
  EXPECT_EQ(count, 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
}

TEST_F(MainLoopTest, TellsWhenADescriptorCanBeWrittenTo) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const Descriptor readEnd(ends[0]);
  const Descriptor writeEnd(ends[1]);
  ASSERT_EQ(fcntl(writeEnd.number(), F_SETFL, O_NONBLOCK), 0);
  const std::string bytes(4096, 'x');
  while (write(writeEnd.number(), bytes.data(), bytes.size()) > 0) {
  }
  bool hasRoom = false;
  const auto watch = loop_.watch(writeEnd.number(), SystemMainLoop::Readiness::writable, [&] {
    EXPECT_TRUE(hasRoom) << "the pipe is full";
    loop_.quit();
  });
  loop_.runAfter(0.02, [&] {
    hasRoom = true;
    std::string taken(65536, 'x');
    EXPECT_GT(read(readEnd.number(), taken.data(), taken.size()), 0);
  });
  run();
  loop_.unwatch(watch);
}

TEST_F(MainLoopTest, AWatchCanChangeWhatItWaitsFor) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const Descriptor readEnd(ends[0]);
  const Descriptor writeEnd(ends[1]);
  int count = 0;
  const auto watch =
      loop_.watch(writeEnd.number(), SystemMainLoop::Readiness::readable, [&] { ++count; });
  loop_.runAfter(0.02, [&] {
    EXPECT_EQ(count, 0) << "the end for writing never has anything to read";
    loop_.setReadiness(watch, SystemMainLoop::Readiness::readableOrWritable);
    loop_.runAfter(0.02, [&] { loop_.quit(); });
  });
  run();
  EXPECT_GT(count, 0);
}

TEST_F(MainLoopTest, WatchesADescriptorUntilItIsUnwatched) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const Descriptor readEnd(ends[0]);
  const Descriptor writeEnd(ends[1]);
  std::string received;
  SystemMainLoop::WatchToken watch{};
  watch = loop_.watchReadable(readEnd.number(), [&] {
    char byte = 0;
    ASSERT_EQ(read(readEnd.number(), &byte, 1), 1);
    received += byte;
    if (received == "ab") {
      loop_.unwatch(watch);
      loop_.startTimer(0.02, [&] { loop_.quit(); });
    }
  });
  ASSERT_EQ(write(writeEnd.number(), "abc", 3), 3);
  run();
  EXPECT_EQ(received, "ab");
}

TEST_F(MainLoopTest, AClosedPeerCountsAsReadable) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const Descriptor readEnd(ends[0]);
  loop_.watchReadable(readEnd.number(), [&] { loop_.quit(); });
  close(ends[1]);
  run();
}

}  // namespace
}  // namespace tessum
