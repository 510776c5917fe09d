// Reports the user's presence from the services of a Linux desktop, over both buses.

#pragma once

#include <memory>

#include "core/bus/bus.h"
#include "core/presence/presence_source.h"

namespace tessum {

// Main thread only.
class LinuxPresence final : public PresenceSource {
 public:
  // `loop` and `clock` must outlive it.
  LinuxPresence(SystemMainLoop& loop, const SteadyClock& clock, Bus::Timing timing = {});
  ~LinuxPresence() override;

  void watch(PresenceHandlers handlers) override;

 private:
  class Watch;

  SystemMainLoop& loop_;
  const SteadyClock& clock_;
  const Bus::Timing timing_;
  std::unique_ptr<Watch> watch_;  // null before the first watch()
};

}  // namespace tessum
