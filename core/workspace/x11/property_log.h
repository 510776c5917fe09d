// What a client of an X server writes into a property: every value, also one that the next value
// replaces before anybody could read it.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/loop/system_main_loop.h"
#include "core/workspace/x11/connection.h"

namespace tessum {

// A property that was given a value or removed.
struct X11PropertyWrite {
  std::uint32_t window = 0;
  std::uint32_t property = 0;
  std::optional<std::uint32_t> number = {};  // the value's first; absent when it has none

  friend bool operator==(const X11PropertyWrite&, const X11PropertyWrite&) = default;
};

// The writes among the requests that a client of this machine's byte order sent one after another.
// Ends at the first that is not whole. Any thread.
[[nodiscard]] std::vector<X11PropertyWrite> propertyWrites(std::string_view requests);

// The log of one client and one property of the root window. Main thread only.
class X11PropertyLog {
 public:
  // Begins the log of `property` and of the client that made `window`. `reader` is connected to
  // `display`, and must outlive the log, as must `loop`. Null when the server does not allow it.
  [[nodiscard]] static std::unique_ptr<X11PropertyLog> open(SystemMainLoop& loop,
                                                            const std::string& display,
                                                            X11Connection& reader,
                                                            std::uint32_t window,
                                                            std::uint32_t property);
  ~X11PropertyLog();
  X11PropertyLog(const X11PropertyLog&) = delete;
  X11PropertyLog& operator=(const X11PropertyLog&) = delete;

  // The first number of each value since the last call, in order, 0 where there is none. All that
  // the server did before `reader` got its last answer is in it. One round trip; empty for ever
  // once the server has ended the log.
  [[nodiscard]] std::vector<std::uint32_t> take();

 private:
  X11PropertyLog(SystemMainLoop& loop, X11Connection& reader, X11Handle connection,
                 std::uint32_t property);

  [[nodiscard]] bool begin(std::uint32_t window);
  void catchUp();
  void readReplies();
  void add(const X11Reply& reply);
  void end();

  SystemMainLoop& loop_;
  X11Connection& reader_;
  X11Handle connection_;
  const std::uint32_t property_;
  std::optional<SystemMainLoop::WatchToken> watch_;  // absent before the log begins and after it
  unsigned request_ = 0;                             // whose replies are the log
  std::vector<std::uint32_t> values_;
  bool hasCaughtUp_ = false;
};

}  // namespace tessum
