// Messages that never went over a bus.

#pragma once

#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "core/base/check.h"

namespace tessum {

// A signal that a test fills with values and then reads as if it had arrived.
class BusDraft {
 public:
  BusDraft() {
    int ends[2] = {-1, -1};
    bool isMade = socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) == 0;
    other_ = ends[1];
    isMade = isMade && sd_bus_new(&bus_) >= 0 && sd_bus_set_fd(bus_, ends[0], ends[0]) >= 0 &&
             sd_bus_start(bus_) >= 0 &&
             sd_bus_message_new_signal(bus_, &message_, "/path", "an.interface", "Member") >= 0;
    TESSUM_CHECK(isMade, "a message could not be made");
  }
  ~BusDraft() {
    sd_bus_message_unref(message_);
    sd_bus_close_unref(bus_);
    close(other_);
  }
  BusDraft(const BusDraft&) = delete;
  BusDraft& operator=(const BusDraft&) = delete;

  // The signal, to append values to.
  [[nodiscard]] sd_bus_message* message() { return message_; }

  // The same, complete and readable.
  [[nodiscard]] sd_bus_message* sealed() {
    TESSUM_CHECK(sd_bus_message_seal(message_, 1, 0) >= 0, "a message could not be sealed");
    return message_;
  }

 private:
  int other_ = -1;
  sd_bus* bus_ = nullptr;
  sd_bus_message* message_ = nullptr;
};

}  // namespace tessum
