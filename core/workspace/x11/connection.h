// A connection to an X server, with the few requests that watching windows takes.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace tessum {

// The names of properties and types, as the server numbers them.
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
using X11Owned = std::unique_ptr<Reply, X11Free>;  // what the library has allocated

// The value of a property: of text, or of numbers, which are here as they lie in memory.
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
  std::uint32_t stamp;     // the server's time in milliseconds; likewise
};

// Tells of changed properties of the root window from its beginning, and of other windows on
// demand. Once the connection is lost, every request gives nothing. Not thread-safe.
class X11Connection {
 public:
  // Connects to the server that `display` names, such as ":0". Throws WorkspaceUnavailable.
  explicit X11Connection(const std::string& display);
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  // Readable when events wait; owned by the connection.
  [[nodiscard]] int descriptor() const;

  [[nodiscard]] bool isLost() const;
  [[nodiscard]] std::uint32_t rootWindow() const { return rootWindow_; }
  [[nodiscard]] const X11Atoms& atoms() const { return atoms_; }

  // Asks for events of `window`: of its end, or of its changed properties too. The request is sent
  // along with the next one that has an answer. The root window stays watched as it is.
  void watchEnd(std::uint32_t window);
  void watchEndAndProperties(std::uint32_t window);

  // Asks for no more events of `window`, likewise.
  void unwatch(std::uint32_t window);

  // The properties of `window` in the order of `names`, each absent where the window has none of
  // that name, and cut to what a title may take; absent as a whole when there is no such window.
  // One round trip.
  [[nodiscard]] std::optional<X11Properties> properties(std::uint32_t window,
                                                        const std::vector<std::uint32_t>& names);

  // Whether an event came in with a reply: the descriptor does not become readable for it.
  [[nodiscard]] bool hasReceivedEvent();

  // The next event that is here, without waiting for one.
  [[nodiscard]] std::optional<X11Event> nextEvent();

 private:
  void selectEvents(std::uint32_t window, std::uint32_t eventMask);

  X11Handle connection_;
  std::uint32_t rootWindow_ = 0;
  X11Atoms atoms_{};
  X11Owned<void> received_;  // an event that was looked at but not yet taken
};

}  // namespace tessum
