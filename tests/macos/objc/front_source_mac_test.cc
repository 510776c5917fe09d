// The front source of macOS, over the fake desktop.

#include "core/workspace/mac/front_source.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

#include "core/workspace/desktop_sources.h"
#include "core/workspace/mac/idle_time.h"
#include "tests/macos/objc/fake_desktop.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

struct Telling {
  std::optional<Front> front;
  Moment since;

  friend bool operator==(const Telling&, const Telling&) = default;
};

void PrintTo(const Telling& telling, std::ostream* out) {
  *out << (telling.front ? telling.front->application.localizedName.value_or("?") : "none") << ' '
       << (telling.front ? telling.front->title.value_or("-") : "-") << " @"
       << telling.since.seconds;
}

using Told = std::vector<Telling>;

class MacFrontSource : public testing::Test {
 protected:
  MacFrontSource() {
    desktop_.attribute = [this](int process, const std::string& name) {
      return answer(process, name);
    };
  }

  ~MacFrontSource() override {
    source_.reset();
    desktop_.runMainQueue();
    desktop_.setFrontmost(nullptr);
    EXPECT_EQ(desktop_.observers(), 0U);
    EXPECT_EQ(fake::liveObjects(), 0) << "something leaked or was destroyed twice";
    EXPECT_TRUE(loop_.timerIntervals().empty());
  }

  void start() {
    source_ = openMacFrontSource(loop_, steadyClock_);
    source_->start([this](const auto& front, Moment since) { told_.push_back({front, since}); });
  }

  // An application with a number for its process and a name that goes with it.
  static fake::Object* application(int process) {
    return fake::makeApplication(process == 1 ? u"One" : u"Two", std::nullopt, process);
  }

  void activate(fake::Object* value) {
    desktop_.postActivation(value);
    desktop_.runMainQueue();
  }

  static Telling telling(int process, std::optional<std::string> title, double since) {
    return {Front{{process == 1 ? "One" : "Two", std::nullopt, process}, std::move(title)},
            {since}};
  }

  [[nodiscard]] Told told() { return std::exchange(told_, {}); }

  FakeClock clock_{{100}};
  FakeSteadyClock steadyClock_{clock_};
  FakeMainLoop loop_{clock_};
  fake::Desktop desktop_;
  std::map<int, std::u16string> titles_;  // of the focused windows, by their process
  double titleTakes_ = 0;                 // seconds
  std::unique_ptr<FrontSource> source_;

 private:
  fake::Desktop::Attribute answer(int process, const std::string& name) {
    constexpr int kNoValue = -25212;
    if (name == "AXFocusedWindow") {
      asked_ = process;
      clock_.advance(titleTakes_);
      return {0, fake::makeWindow()};
    }
    const auto found = titles_.find(asked_);
    if (found == titles_.end()) return {kNoValue, nullptr};
    return {0, fake::makeText(found->second)};
  }

  Told told_;
  int asked_ = 0;
};

TEST_F(MacFrontSource, TellsWhatIsInFrontWhenItStarts) {
  desktop_.setFrontmost(application(1));
  titles_[1] = u"title";
  start();
  EXPECT_EQ(told(), (Told{telling(1, "title", 100)}));
  EXPECT_EQ(source_->way(), "AppKit");
}

TEST_F(MacFrontSource, TellsThatNothingIsInFrontWhenItStarts) {
  start();
  EXPECT_EQ(told(), (Told{{std::nullopt, {100}}}));
}

TEST_F(MacFrontSource, TellsOfActivationsWithTheTitleOfThatMoment) {
  start();
  static_cast<void>(told());
  clock_.advance(1);
  titles_[1] = u"first";
  activate(application(1));
  clock_.advance(1);
  activate(application(2));
  clock_.advance(1);
  activate(nullptr);
  EXPECT_EQ(told(),
            (Told{telling(1, "first", 101), telling(2, std::nullopt, 102), {std::nullopt, {103}}}));
}

TEST_F(MacFrontSource, AnActivationCountsFromBeforeItsTitleWasAskedFor) {
  start();
  static_cast<void>(told());
  titleTakes_ = 0.5;
  activate(application(1));
  EXPECT_EQ(told(), (Told{telling(1, std::nullopt, 100)}));
}

TEST_F(MacFrontSource, LooksForAnotherTitleEveryFiveSeconds) {
  desktop_.setFrontmost(application(1));
  titles_[1] = u"one";
  start();
  loop_.advance(5);
  EXPECT_EQ(told(), (Told{telling(1, "one", 100)}));
  titles_[1] = u"two";
  loop_.advance(4);
  EXPECT_EQ(told(), Told{});
  loop_.advance(1);
  EXPECT_EQ(told(), (Told{telling(1, "two", 110)}));
  titles_[1] = u"";
  loop_.advance(10);
  EXPECT_EQ(told(), (Told{telling(1, std::nullopt, 115)})) << "an empty title is none";
}

TEST_F(MacFrontSource, AsksNobodyWhileNothingIsInFront) {
  start();
  desktop_.attribute = nullptr;  // a query would end the test
  loop_.advance(60);
  EXPECT_EQ(told().size(), 1U);
}

TEST_F(MacFrontSource, TheSameActivationAgainIsNotTold) {
  desktop_.setFrontmost(application(1));
  start();
  activate(application(1));
  EXPECT_EQ(told().size(), 1U);
}

TEST(MacDesktop, AnyInputToTheSessionCounts) {
  fake::Desktop desktop;
  desktop.secondsSinceInput = 12.5;
  EXPECT_EQ(secondsSinceInput(), 12.5);
}

TEST(MacDesktop, HasBothSources) {
  fake::Desktop desktop;
  SystemMainLoop loop;
  const SystemSteadyClock clock;
  const auto sources =
      openDesktopSources(loop, clock, [](const auto&) { ADD_FAILURE() << "nothing to say"; });
  EXPECT_NE(sources.front, nullptr);
  EXPECT_NE(sources.idle, nullptr);
}

}  // namespace
}  // namespace tessum
