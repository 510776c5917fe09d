// A private X11 desktop, with the loop that the code under test runs on.

#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "core/workspace/x11/front_source.h"
#include "tests/support/desktop/x11_desktop.h"

namespace tessum {

class X11Test : public testing::Test {
 protected:
  // Runs the loop once, and until `isDone` holds, for a minute at most.
  template <typename Predicate>
  [[nodiscard]] bool runUntil(Predicate isDone) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    do {
      loop_.runAfter(0.01, [this] { loop_.quit(); });
      loop_.run();
    } while (!isDone() && std::chrono::steady_clock::now() < deadline);
    return isDone();
  }

  // Waits for `seconds` without running the loop.
  void letPass(double seconds) const {
    const Moment start = clock_.now();
    EXPECT_TRUE(eventually([&] { return secondsBetween(start, clock_.now()) >= seconds; }));
  }

  Desktop desktop_;
  SystemMainLoop loop_;
  const SystemSteadyClock clock_{};
};

// With the reports of a front source.
class X11FrontTest : public X11Test {
 protected:
  struct Telling {
    std::optional<Front> front;
    Moment since;
    Moment toldAt;
  };

  void start() {
    source_ = openX11FrontSource(loop_, clock_, desktop_.display(), DesktopEntries({}, {}),
                                 [this](const auto& notice) { notices_.push_back(notice.text); });
    source_->start([this](const auto& front, Moment since) {
      const Moment now = clock_.now();
      EXPECT_LE(since.seconds, now.seconds) << "a moment in the future";
      if (!tellings_.empty()) {
        EXPECT_GE(since.seconds, tellings_.back().since.seconds) << "a moment before the last one";
      }
      tellings_.push_back({front, since, now});
    });
  }

  // The last report: "App", "App: title" or "none".
  [[nodiscard]] std::string front() const { return textOf(tellings_.back()); }

  [[nodiscard]] std::optional<std::string> title() const {
    return tellings_.back().front ? tellings_.back().front->title : std::nullopt;
  }

  // All reports since the last call.
  [[nodiscard]] std::vector<std::string> told() {
    std::vector<std::string> texts;
    for (; toldBefore_ < tellings_.size(); ++toldBefore_) {
      texts.push_back(textOf(tellings_[toldBefore_]));
    }
    return texts;
  }

  // Runs the loop until that is reported.
  [[nodiscard]] bool comesTo(const std::string& text) {
    return runUntil([&] { return front() == text; });
  }

  std::vector<std::string> notices_;
  std::vector<Telling> tellings_;
  std::unique_ptr<FrontSource> source_;

 private:
  static std::string textOf(const Telling& telling) {
    if (!telling.front) return "none";
    const std::string name = telling.front->application.localizedName.value_or("?");
    return telling.front->title ? name + ": " + *telling.front->title : name;
  }

  std::size_t toldBefore_ = 0;
};

}  // namespace tessum
