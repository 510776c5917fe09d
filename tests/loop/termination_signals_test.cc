#include "core/loop/termination_signals.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace tessum {
namespace {

TEST(TerminationSignals, EachOfThemRunsTheTask) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SystemMainLoop loop;
    int count = 0;
    const TerminationSignals signals(loop, [&] {
      ++count;
      loop.quit();
    });
    raise(signal);
    raise(signal);
    loop.run();
    EXPECT_EQ(count, 1) << signal;
  }
}

TEST(TerminationSignals, AnIgnoredSignalStaysIgnored) {
  const auto before = signal(SIGHUP, SIG_IGN);
  SystemMainLoop loop;
  int count = 0;
  {
    const TerminationSignals signals(loop, [&] {
      ++count;
      loop.quit();
    });
    raise(SIGHUP);
    raise(SIGTERM);
    loop.run();
  }
  EXPECT_EQ(count, 1);
  EXPECT_EQ(signal(SIGHUP, before), SIG_IGN);
}

TEST(TerminationSignalsDeathTest, TheirUsualEffectComesBack) {
  const auto scenario = [] {
    SystemMainLoop loop;
    {
      const TerminationSignals signals(loop, [] {});
    }
    raise(SIGTERM);
  };
  EXPECT_EXIT(scenario(), testing::KilledBySignal(SIGTERM), "");
}

TEST(TerminationSignalsDeathTest, OnlyOneObjectCanHaveThem) {
  SystemMainLoop loop;
  const TerminationSignals signals(loop, [] {});
  EXPECT_DEATH(TerminationSignals(loop, [] {}), "already taken");
}

}  // namespace
}  // namespace tessum
