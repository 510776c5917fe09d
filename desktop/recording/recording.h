// What is recorded: what is in front, while the user is there.

#pragma once

#include <optional>
#include <vector>

#include "core/loop/main_loop.h"
#include "core/platform/clock.h"
#include "core/platform/steady_clock.h"
#include "core/workspace/front_source.h"
#include "desktop/recording/away.h"
#include "desktop/recording/front_filter.h"
#include "desktop/recording/front_sessions.h"
#include "desktop/recording/monitor_feed.h"
#include "desktop/recording/wall_timeline.h"

namespace tessum {

struct RecordingSettings {
  std::optional<double> awayAfter = 300;  // seconds without input; absent means never away
  Titles titles = Titles::each;
  std::vector<HideRule> hide = {};
};

// Turns what the desktop and the session tell into sessions of the monitor. Main thread only.
class Recording {
 public:
  // How often tick() is to be called, in seconds.
  static constexpr double kTickSeconds = 5;

  // `onChange` is called whenever awaySince() has changed, and when a schedule of the settings or
  // the pause may have begun or ended by itself. All but `settings` must outlive the object.
  Recording(std::shared_ptr<SessionWriter> sessions, const Clock& wall, const SteadyClock& steady,
            MainLoop& loop, const RecordingSettings& settings, std::function<void()> onChange);
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  // Follows other settings from now on.
  void obey(const RecordingSettings& settings);

  // Begins or, where it is absent, ends a pause. It also ends by itself.
  void pause(const std::optional<Pause>& pause);

  [[nodiscard]] bool isPaused() const { return filter_.isPaused(); }

  // What is in front, and since when.
  void show(const std::optional<Front>& front, Moment since);

  // What keeps the user away, or not.
  [[nodiscard]] Away& away() { return away_; }

  // The computer went to sleep at `when`, and is awake again.
  void noteSleep(Moment when);
  void noteWakeUp(Moment when);

  // Finds out what nobody tells: a clock that was set, and a sleep that was not announced.
  void tick();

  // Ends the open session. To be called once, at the end.
  void stop();

  // Since when the user has been away; absent while not.
  [[nodiscard]] std::optional<Date> awaySince() const;

 private:
  bool followClock();
  void update(Moment since);
  void leave(Moment since);
  void comeBack(Moment when);

  const SteadyClock& steady_;
  WallTimeline timeline_;
  MonitorFeed feed_;
  FrontSessions sessions_;
  FrontFilter filter_;
  const std::function<void()> onChange_;
  Away away_;
  std::optional<Front> front_;
  Kept kept_ = Kept::all;  // of what is in front
  std::optional<Date> awaySince_;
  Moment lastTick_;
  double asleep_;  // seconds of sleep that are known of
};

}  // namespace tessum
