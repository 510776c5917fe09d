// Makes sessions of what is in front.
//
// A session is a stretch of one application with one title. A title that changes within an
// application begins a new session once it has lasted five seconds, counted from when it appeared:
// titles that go sooner, such as those of spinners and loading pages, join the session before them.
// Before an application's first title has lasted that long there is no such session, so it gives
// its time to the title that follows it.

#pragma once

#include <optional>
#include <string>

#include "core/loop/main_loop.h"
#include "core/platform/steady_clock.h"
#include "core/workspace/front_source.h"
#include "desktop/recording/monitor_feed.h"
#include "desktop/recording/wall_timeline.h"
#include "desktop/settings/settings.h"

namespace tessum {

// Main thread only.
class FrontSessions {
 public:
  // How long a title lasts at least that has a session of its own.
  static constexpr double kSettledSeconds = 5;

  // All but `titles` must outlive the object.
  FrontSessions(MonitorFeed& feed, const WallTimeline& timeline, MainLoop& loop, Titles titles);
  ~FrontSessions();
  FrontSessions(const FrontSessions&) = delete;
  FrontSessions& operator=(const FrontSessions&) = delete;

  // What becomes of titles from now on.
  void setTitles(Titles titles) { titles_ = titles; }

  // What is in front since `since`, which may lie before the last call: what began after it then
  // never was.
  void show(const std::optional<Front>& front, Moment since);

  // Stores the title that an activation has by now, while none of its titles lasts. To be called
  // every few seconds.
  void storeLatestTitle();

 private:
  struct Title {
    std::optional<std::string> text;
    Moment since;
  };

  [[nodiscard]] const Title& latest() const { return next_ ? *next_ : title_; }
  void begin(const Front& front, Moment since);
  void end(Moment when);
  void changeTitle(const std::optional<std::string>& text, Moment since);
  void decide(Moment now);
  void finishTitles(Moment when);
  void dropNext();

  MonitorFeed& feed_;
  const WallTimeline& timeline_;
  MainLoop& loop_;
  Titles titles_;

  std::optional<RunningApplication> application_;  // absent while nothing is in front
  Title title_;                                    // of the open session
  bool isFirst_ = false;                           // of its activation, and has not lasted yet
  std::optional<Title> next_;                      // the title since then, which has not lasted yet
  std::optional<MainLoop::TimerToken> timer_;
};

}  // namespace tessum
