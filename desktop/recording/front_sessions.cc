#include "desktop/recording/front_sessions.h"

#include <utility>

namespace tessum {

FrontSessions::FrontSessions(MonitorFeed& feed, const WallTimeline& timeline, MainLoop& loop,
                             Titles titles)
    : feed_(feed), timeline_(timeline), loop_(loop), titles_(titles) {}

FrontSessions::~FrontSessions() {
  dropNext();
}

void FrontSessions::show(const std::optional<Front>& front, Moment since) {
  if (!front) return end(since);
  Front shown = *front;
  if (titles_ == Titles::none) shown.title.reset();
  if (application_ == shown.application) return changeTitle(shown.title, since);
  finishTitles(since);
  begin(shown, since);
}

void FrontSessions::begin(const Front& front, Moment since) {
  application_ = front.application;
  title_ = {front.title, since};
  isFirst_ = true;
  feed_.begin(front.application, front.title, timeline_.dateOf(since));
}

void FrontSessions::end(Moment when) {
  if (!application_) return;
  finishTitles(when);
  application_.reset();
  feed_.end(timeline_.dateOf(when));
}

void FrontSessions::changeTitle(const std::optional<std::string>& text, Moment since) {
  if (text == latest().text) return;
  decide(since);
  dropNext();
  if (text == title_.text) return;
  if (isFirst_ && !title_.text) {
    title_ = {text, since};  // a window that has just got its title
    return feed_.retitle(*text);
  }
  next_ = {text, since};
  if (titles_ == Titles::each) {
    timer_ = loop_.runAfter(kSettledSeconds, [this] {
      timer_.reset();
      decide(movedBy(latest().since, kSettledSeconds));
    });
  }
}

// Whether the latest title, shown until `now`, has lasted long enough; if so, begins its session.
void FrontSessions::decide(Moment now) {
  const bool hasLasted =
      titles_ == Titles::each && secondsBetween(latest().since, now) >= kSettledSeconds;
  if (!hasLasted) return;
  if (next_ && isFirst_) {
    storeLatestTitle();
  } else if (next_) {
    title_ = *std::exchange(next_, std::nullopt);
    feed_.begin(*application_, title_.text, timeline_.dateOf(title_.since));
  }
  isFirst_ = false;
}

// The application stops being in front at `when`.
void FrontSessions::finishTitles(Moment when) {
  if (!application_) return;
  decide(when);
  if (next_ && secondsBetween(next_->since, when) >= 0) storeLatestTitle();
  dropNext();
}

void FrontSessions::storeLatestTitle() {
  if (!isFirst_ || !next_ || !next_->text) return;
  title_ = *std::exchange(next_, std::nullopt);
  feed_.retitle(*title_.text);
}

void FrontSessions::dropNext() {
  next_.reset();
  if (timer_) loop_.invalidateTimer(*timer_);
  timer_.reset();
}

}  // namespace tessum
