// Decides what is recorded: what is in front, while the user is present.

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

// Turns events of the desktop and the login session into sessions of the monitor. Main thread only.
class Recording {
 public:
  // How often tick() is to be called, in seconds.
  static constexpr double kTickSeconds = 5;

  // Calls `onChange` whenever awaySince() has changed, and when a schedule of the settings or the
  // pause may have begun or ended by itself. All arguments but `settings` must outlive the object.
  Recording(std::shared_ptr<SessionWriter> sessions, const Clock& wall, const SteadyClock& steady,
            MainLoop& loop, const RecordingSettings& settings, std::function<void()> onChange);
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  // Changes the settings.
  void obey(const RecordingSettings& settings);

  // Begins a pause, or ends it when absent. A pause also ends by itself.
  void pause(const std::optional<Pause>& pause);

  [[nodiscard]] bool isPaused() const { return filter_.isPaused(); }

  // Reports what is in front, and since when.
  void show(const std::optional<Front>& front, Moment since);

  // Events that tell whether the user is away.
  [[nodiscard]] Away& away() { return away_; }

  // Reports that the computer went to sleep at `when`, or woke up.
  void noteSleep(Moment when);
  void noteWakeUp(Moment when);

  // Detects what is not announced: a clock that was set, and an unannounced sleep.
  void tick();

  // Ends the open session. Call once, at the end.
  void stop();

  // Since when the user has been away; absent while present.
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
  double asleep_;  // seconds of sleep known so far
};

}  // namespace tessum
