#include "core/workspace/mac/front_source.h"

#include <utility>

#include "core/workspace/mac/applications.h"
#include "core/workspace/mac/window_title.h"
#include "core/workspace/title.h"

namespace tessum {
namespace {

constexpr double kTitlePollSeconds = 5.0;

std::optional<std::string> titleOf(const RunningApplication& application) {
  if (!application.processIdentifier) return std::nullopt;
  auto title = focusedWindowTitleOf(*application.processIdentifier);
  return title ? titleFrom(*std::move(title)) : std::nullopt;
}

class MacFrontSource final : public FrontSource {
 public:
  MacFrontSource(MainLoop& loop, const SteadyClock& clock) : loop_(loop), clock_(clock) {}

  ~MacFrontSource() override {
    if (timer_) loop_.invalidateTimer(*timer_);
  }

  void start(Handler handler) override {
    handler_ = std::move(handler);
    observer_.emplace([this](const auto& application) { look(application); });
    timer_ = loop_.startTimer(kTitlePollSeconds, [this] {
      if (front_) look(front_->application);
    });
    look(activeApplication());
    if (!front_) handler_(std::nullopt, clock_.now());
  }

  [[nodiscard]] std::string way() const override { return "AppKit"; }

 private:
  // Getting the title may be slow when the application is busy, so take the time first.
  void look(const std::optional<RunningApplication>& application) {
    const Moment since = clock_.now();
    std::optional<Front> front;
    if (application) front = Front{*application, titleOf(*application)};
    if (front == front_) return;
    front_ = std::move(front);
    handler_(front_, since);
  }

  MainLoop& loop_;
  const SteadyClock& clock_;
  Handler handler_;
  std::optional<ActivationObserver> observer_;
  std::optional<MainLoop::TimerToken> timer_;
  std::optional<Front> front_;  // as last reported
};

}  // namespace

std::unique_ptr<FrontSource> openMacFrontSource(MainLoop& loop, const SteadyClock& clock) {
  return std::make_unique<MacFrontSource>(loop, clock);
}

}  // namespace tessum
