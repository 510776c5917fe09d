#include "core/workspace/wayland/idle_source.h"

#include <memory>

#include "tests/support/bus/bus_linux.h"
#include "tests/workspace/wayland/fake_compositor.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

class IdleSourceWayland : public testing::TestWithParam<FakeCompositor::Idle> {
 protected:
  void open() {
    source_ = openWaylandIdleSource(
        clock_, WaylandConnection::open(loop_, clock_, FakeCompositor::kDisplay));
  }

  // Watches, and calls what is told "idle" or "active" with that name.
  void watch(double seconds, const std::string& name) {
    source_->watch(seconds, {.onIdle =
                                 [this, name](Moment lastInput) {
                                   told_.push_back(name + " idle");
                                   moment_ = lastInput;
                                 },
                             .onActive =
                                 [this, name](Moment input) {
                                   told_.push_back(name + " active");
                                   moment_ = input;
                                 }});
  }

  // Waits until the compositor has been asked for so many timers.
  [[nodiscard]] bool hasTimers(std::size_t count) {
    return runUntil(loop_, [&] { return compositor_.timers().size() == count; });
  }

  [[nodiscard]] bool comesTo(const Told& told) {
    return runUntil(loop_, [&] { return told_ == told; });
  }

  SystemMainLoop loop_;
  const SystemSteadyClock clock_{};
  FakeCompositor compositor_{GetParam()};
  std::unique_ptr<IdleSource> source_;
  Told told_;
  Moment moment_;
};

TEST_P(IdleSourceWayland, TellsOfIdlenessFromTheLastInputToTheNext) {
  open();
  watch(300, "a");
  ASSERT_TRUE(hasTimers(1));
  EXPECT_EQ(compositor_.timers(), std::vector<std::uint32_t>{300'000});
  const Moment before = clock_.now();
  compositor_.tellIdle();
  ASSERT_TRUE(comesTo({"a idle"}));
  EXPECT_GE(moment_.seconds, before.seconds - 300);
  EXPECT_LE(moment_.seconds, clock_.now().seconds - 300);
  compositor_.tellResumed();
  ASSERT_TRUE(comesTo({"a idle", "a active"}));
  EXPECT_GE(moment_.seconds, before.seconds);
  compositor_.tellIdle();
  EXPECT_TRUE(comesTo({"a idle", "a active", "a idle"}));
}

TEST_P(IdleSourceWayland, AnotherWatchTakesThePlaceOfTheFirst) {
  open();
  watch(1, "a");
  watch(1e9, "b");
  ASSERT_TRUE(hasTimers(2));
  EXPECT_EQ(compositor_.timers(), (std::vector<std::uint32_t>{1000, 0x7FFFFFFF}));
  compositor_.tellIdle();
  EXPECT_TRUE(comesTo({"b idle"}));
}

INSTANTIATE_TEST_SUITE_P(Protocols, IdleSourceWayland,
                         testing::Values(FakeCompositor::Idle::common, FakeCompositor::Idle::kwin));

TEST(IdleSourceWaylandAlone, IsMissingWhereTheCompositorDoesNotTell) {
  const FakeCompositor compositor;
  SystemMainLoop loop;
  const SystemSteadyClock clock;
  EXPECT_EQ(
      openWaylandIdleSource(clock, WaylandConnection::open(loop, clock, FakeCompositor::kDisplay)),
      nullptr);
}

}  // namespace
}  // namespace tessum
