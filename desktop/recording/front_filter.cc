#include "desktop/recording/front_filter.h"

#include <algorithm>
#include <utility>

#include "desktop/periods/wall_clock.h"

namespace tessum {
namespace {

// Renewing the timer this often does no harm, and keeps its times within the loop's range.
constexpr double kLongestWait = 86400;

Window windowOf(const Front& front) {
  return {.app = front.application.localizedName,
          .identifier = front.application.bundleIdentifier,
          .title = front.title};
}

}  // namespace

FrontFilter::FrontFilter(const Clock& wall, MainLoop& loop, std::function<void()> onChange)
    : wall_(wall), loop_(loop), onChange_(std::move(onChange)) {}

FrontFilter::~FrontFilter() {
  if (timer_) loop_.invalidateTimer(*timer_);
}

void FrontFilter::obey(std::vector<HideRule> rules) {
  rules_ = std::move(rules);
}

FrontFilter::Passed FrontFilter::pass(const std::optional<Front>& front) {
  const Date now = wall_.now();
  waitForEdge(now);
  if (isPausedAt(now)) return {std::nullopt, Kept::nothing};
  if (!front) return {std::nullopt, Kept::all};
  const Kept kept = judge(rules_, windowOf(*front), wallTime(now)).kept;
  if (kept == Kept::nothing) return {std::nullopt, kept};
  Passed passed{front, kept};
  if (kept == Kept::app) passed.front->title.reset();
  return passed;
}

bool FrontFilter::isPausedAt(Date now) const {
  return pause_ && (!pause_->until || secondsBetween(now, *pause_->until) > 0);
}

void FrontFilter::waitForEdge(Date now) {
  if (timer_) loop_.invalidateTimer(*timer_);
  timer_.reset();
  auto edge = nextEdge(rules_, now);
  if (isPausedAt(now) && pause_->until && (!edge || secondsBetween(*pause_->until, *edge) > 0)) {
    edge = pause_->until;
  }
  if (!edge) return;
  timer_ = loop_.runAfter(std::min(secondsBetween(now, *edge), kLongestWait), [this] {
    timer_.reset();
    onChange_();
  });
}

}  // namespace tessum
