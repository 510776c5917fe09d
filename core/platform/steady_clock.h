// Time that nobody can set.

#pragma once

namespace tessum {

inline constexpr double kMillisecondsPerSecond = 1000;

// A point on the computer's own time line: seconds since it started, the time that it slept
// included. Immutable.
struct Moment {
  double seconds = 0;

  friend bool operator==(const Moment&, const Moment&) = default;
};

// The seconds from `start` to `end`, negative when `end` comes first.
[[nodiscard]] inline double secondsBetween(Moment start, Moment end) {
  return end.seconds - start.seconds;
}

// `moment` moved by `seconds`, back in time when they are negative.
[[nodiscard]] inline Moment movedBy(Moment moment, double seconds) {
  return {moment.seconds + seconds};
}

// Any thread.
class SteadyClock {
 public:
  virtual ~SteadyClock() = default;

  // The present moment, with its fraction of a second.
  [[nodiscard]] virtual Moment now() const = 0;

  // How many seconds the computer has slept since it started.
  [[nodiscard]] virtual double secondsAsleep() const = 0;
};

// The computer's own clocks.
class SystemSteadyClock final : public SteadyClock {
 public:
  [[nodiscard]] Moment now() const override;
  [[nodiscard]] double secondsAsleep() const override;
};

}  // namespace tessum
