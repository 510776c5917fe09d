// A connection to an X server, with the few requests needed to watch windows.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace tessum {

// The server's numbers (atoms) for the names of properties and types.
struct X11Atoms {
  std::uint32_t activeWindow;        // _NET_ACTIVE_WINDOW
  std::uint32_t windowManagerCheck;  // _NET_SUPPORTING_WM_CHECK
  std::uint32_t netName;             // _NET_WM_NAME
  std::uint32_t process;             // _NET_WM_PID
  std::uint32_t applicationId;       // _GTK_APPLICATION_ID
  std::uint32_t desktopFile;         // _KDE_NET_WM_DESKTOP_FILE
  std::uint32_t name;                // WM_NAME
  std::uint32_t windowClass;         // WM_CLASS
  std::uint32_t clientMachine;       // WM_CLIENT_MACHINE
  std::uint32_t utf8String;          // types
  std::uint32_t compoundText;
};

struct X11Disconnect {
  void operator()(xcb_connection_t* connection) const;
};
using X11Handle = std::unique_ptr<xcb_connection_t, X11Disconnect>;

struct X11Free {
  void operator()(void* memory) const;
};
template <typename Reply>
using X11Owned = std::unique_ptr<Reply, X11Free>;  // memory allocated by the library

// The value of a property: text, or numbers in their memory representation.
struct X11Property {
  std::uint32_t type;
  int bitsPerItem;
  std::string bytes;

  // The first number; absent when there is none of 32 bits.
  [[nodiscard]] std::optional<std::uint32_t> number() const;
};

using X11Properties = std::vector<std::optional<X11Property>>;

struct X11Event {
  enum class Kind { propertyChanged, windowDestroyed, other };

  Kind kind;
  std::uint32_t window;
  std::uint32_t property;  // 0 unless the kind is propertyChanged
  std::uint32_t stamp;     // the server's time in milliseconds; 0 likewise
};

// Reports property changes of the root window from the start, and of other windows on request. Once
// the connection is lost, every request returns nothing. Not thread-safe.
class X11Connection {
 public:
  // Connects to `display`, such as ":0". Throws WorkspaceUnavailable.
  explicit X11Connection(const std::string& display);
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  // Readable when events wait; owned by the connection.
  [[nodiscard]] int descriptor() const;

  [[nodiscard]] bool isLost() const;
  [[nodiscard]] std::uint32_t rootWindow() const { return rootWindow_; }
  [[nodiscard]] const X11Atoms& atoms() const { return atoms_; }

  // Requests events when `window` is destroyed or, optionally, also when its properties change. The
  // request is sent with the next one that has a reply. The root window's events do not change.
  void watchEnd(std::uint32_t window);
  void watchEndAndProperties(std::uint32_t window);

  // Stops events of `window`; sent likewise.
  void unwatch(std::uint32_t window);

  // The properties of `window` in the order of `names`, cut to the longest title; each is absent
  // when the window does not have it. Absent as a whole when there is no such window. One round
  // trip.
  [[nodiscard]] std::optional<X11Properties> properties(std::uint32_t window,
                                                        const std::vector<std::uint32_t>& names);

  // Whether an event arrived along with a reply: the descriptor does not become readable for it.
  [[nodiscard]] bool hasReceivedEvent();

  // The next event that has arrived; does not wait.
  [[nodiscard]] std::optional<X11Event> nextEvent();

 private:
  void selectEvents(std::uint32_t window, std::uint32_t eventMask);

  X11Handle connection_;
  std::uint32_t rootWindow_ = 0;
  X11Atoms atoms_{};
  X11Owned<void> received_;  // an event that was read but not yet returned
};

}  // namespace tessum
