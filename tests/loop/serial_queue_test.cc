#include "core/loop/serial_queue.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessum {
namespace {

TEST(ThreadQueue, KeepsItsLabel) {
  const ThreadQueue queue("com.example.queue");
  EXPECT_EQ(queue.label(), "com.example.queue");
}

TEST(ThreadQueue, RunsTasksInTheOrderOfPosting) {
  std::vector<int> order;
  {
    ThreadQueue queue("queue");
    for (int i = 0; i < 1000; ++i) queue.post([&order, i] { order.push_back(i); });
  }
  ASSERT_EQ(order.size(), 1000U);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(ThreadQueue, NeverRunsTwoTasksAtOnce) {
  int count = 0;  // unguarded on purpose: the thread sanitizer watches it
  {
    ThreadQueue queue("queue");
    std::vector<std::thread> posters;
    for (int t = 0; t < 4; ++t) {
      posters.emplace_back([&] {
        for (int i = 0; i < 500; ++i) queue.post([&count] { ++count; });
      });
    }
    for (auto& poster : posters) poster.join();
  }
  EXPECT_EQ(count, 2000);
}

TEST(ThreadQueue, KnowsWhetherTheCallerRunsOnIt) {
  ThreadQueue queue("queue");
  ThreadQueue other("other");
  EXPECT_FALSE(queue.isCurrent());
  std::promise<std::pair<bool, bool>> current;
  queue.post([&] { current.set_value({queue.isCurrent(), other.isCurrent()}); });
  EXPECT_EQ(current.get_future().get(), std::pair(true, false));
  EXPECT_FALSE(queue.isCurrent());
}

TEST(ThreadQueue, ATaskMayPostAnother) {
  std::promise<void> done;
  ThreadQueue queue("queue");
  queue.post([&] { queue.post([&] { done.set_value(); }); });
  done.get_future().get();
}

TEST(ThreadQueue, RunsATaskThatIsPostedByTheLastOneWhileTheQueueGoes) {
  bool ran = false;
  {
    ThreadQueue queue("queue");
    queue.post([&] { queue.post([&] { ran = queue.isCurrent(); }); });
  }
  EXPECT_TRUE(ran);
}

TEST(ThreadQueue, MayBeDestroyedByItsOwnTask) {
  auto queue = std::make_unique<ThreadQueue>("queue");
  const auto isSet = std::make_shared<std::promise<void>>();
  const auto ranAfterwards = std::make_shared<std::promise<void>>();
  auto* const raw = queue.get();
  auto mayGo = isSet->get_future().share();
  raw->post([&queue, mayGo] {
    mayGo.wait();
    queue.reset();
  });
  raw->post([ranAfterwards] { ranAfterwards->set_value(); });
  isSet->set_value();
  ranAfterwards->get_future().get();
  EXPECT_EQ(queue, nullptr);
}

TEST(ThreadQueue, DropsWhatATaskHeldBeforeTheNextOneRuns) {
  ThreadQueue queue("queue");
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = held;
  std::promise<bool> isGone;
  queue.post([held = std::move(held)] { ++*held; });
  queue.post([&] { isGone.set_value(watched.expired()); });
  EXPECT_TRUE(isGone.get_future().get());
}

}  // namespace
}  // namespace tessum
