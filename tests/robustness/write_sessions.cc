// Opens the user's database, prints "writing", writes sessions without pause until its input ends,
// and prints how many it has stored. It drops what it cannot write because of a lock.

#include <poll.h>
#include <unistd.h>

#include <cstdio>

#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/platform/locations.h"
#include "core/store/database.h"

namespace {

bool inputHasEnded() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, 0) != 0;
}

}  // namespace

int main() {
  using namespace tessum;

  const SystemClock clock;
  const SystemCalendar calendar;
  Database database(SystemLocations().dataFolder() + "/activities.db", calendar);
  std::puts("writing");
  std::fflush(stdout);
  int stored = 0;
  while (!inputHasEnded()) {
    try {
      const auto id = database.insert({.id = {},
                                       .appName = "Editor",
                                       .bundleID = "org.example.editor",
                                       .title = {},
                                       .startTime = clock.now(),
                                       .endTime = {}});
      ++stored;
      database.updateTitle(id, "A title");
      database.updateEndTime(id, clock.now());
    } catch (const DatabaseError&) {
    }
  }
  std::printf("%d\n", stored);
}
