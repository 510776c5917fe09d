// Turns what is in front into sessions.
//
// A session is a stretch of time with one application and one title. A new title begins a new
// session once it has lasted five seconds, and that session starts when the title appeared. The
// time of shorter titles, such as those of spinners and loading pages, goes to the previous
// session. If an application's first title is too short, its time goes to the title that follows.

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
  // The shortest time for which a title gets its own session.
  static constexpr double kSettledSeconds = 5;

  // All arguments but `titles` must outlive the object.
  FrontSessions(MonitorFeed& feed, const WallTimeline& timeline, MainLoop& loop, Titles titles);
  ~FrontSessions();
  FrontSessions(const FrontSessions&) = delete;
  FrontSessions& operator=(const FrontSessions&) = delete;

  // Changes how titles are recorded from now on.
  void setTitles(Titles titles) { titles_ = titles; }

  // Sets what is in front since `since`. If that is before the last call, what began after it is
  // deleted.
  void show(const std::optional<Front>& front, Moment since);

  // Stores the current title of an activation none of whose titles has lasted yet. Call every few
  // seconds.
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
  bool isFirst_ = false;                           // the first of its activation, not settled yet
  std::optional<Title> next_;                      // a newer title, not settled yet
  std::optional<MainLoop::TimerToken> timer_;
};

}  // namespace tessum
