#include "core/workspace/x11/connection.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/workspace/desktop_sources.h"
#include "core/workspace/title.h"

namespace tessum {
namespace {

// In four-byte units: one more than a title may have, so a character that is cut here lies beyond
// what is kept.
constexpr std::uint32_t kLongestProperty = kLongestTitle / 4 + 1;

struct NamedAtom {
  std::string_view name;
  std::uint32_t X11Atoms::*atom;
};

constexpr NamedAtom kNamedAtoms[] = {
    {"_NET_ACTIVE_WINDOW", &X11Atoms::activeWindow},
    {"_NET_SUPPORTING_WM_CHECK", &X11Atoms::windowManagerCheck},
    {"_NET_WM_NAME", &X11Atoms::netName},
    {"_NET_WM_PID", &X11Atoms::process},
    {"_GTK_APPLICATION_ID", &X11Atoms::applicationId},
    {"_KDE_NET_WM_DESKTOP_FILE", &X11Atoms::desktopFile},
    {"UTF8_STRING", &X11Atoms::utf8String},
    {"COMPOUND_TEXT", &X11Atoms::compoundText},
};

// Interns all names in one round trip. A name that fails stays 0, which names no property.
X11Atoms internAtoms(xcb_connection_t* connection) {
  std::vector<xcb_intern_atom_cookie_t> cookies;
  for (const auto& named : kNamedAtoms) {
    cookies.push_back(xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(named.name.size()),
                                      named.name.data()));
  }
  X11Atoms atoms{};
  atoms.name = XCB_ATOM_WM_NAME;
  atoms.windowClass = XCB_ATOM_WM_CLASS;
  atoms.clientMachine = XCB_ATOM_WM_CLIENT_MACHINE;
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    const X11Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookies[i], nullptr));
    if (reply) atoms.*kNamedAtoms[i].atom = reply->atom;
  }
  return atoms;
}

const xcb_screen_t* screenWithNumber(xcb_connection_t* connection, int number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 0; --number) xcb_screen_next(&screens);
  return screens.data;
}

}  // namespace

std::optional<std::uint32_t> X11Property::number() const {
  std::uint32_t value = 0;
  if (bitsPerItem != 32 || bytes.size() < sizeof value) return std::nullopt;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

void X11Disconnect::operator()(xcb_connection_t* connection) const {
  xcb_disconnect(connection);
}

void X11Free::operator()(void* memory) const {
  std::free(memory);
}

X11Connection::X11Connection(const std::string& display) {
  int screen = 0;
  connection_.reset(xcb_connect(display.c_str(), &screen));
  if (isLost()) throw WorkspaceUnavailable("Cannot connect to the X11 display " + display + ".");
  rootWindow_ = screenWithNumber(connection_.get(), screen)->root;
  selectEvents(rootWindow_, XCB_EVENT_MASK_PROPERTY_CHANGE);
  atoms_ = internAtoms(connection_.get());
}

X11Connection::~X11Connection() = default;

int X11Connection::descriptor() const {
  return xcb_get_file_descriptor(connection_.get());
}

bool X11Connection::isLost() const {
  return xcb_connection_has_error(connection_.get()) != 0;
}

void X11Connection::watchEnd(std::uint32_t window) {
  if (window == rootWindow_) return;
  selectEvents(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
}

void X11Connection::watchEndAndProperties(std::uint32_t window) {
  if (window == rootWindow_) return;
  selectEvents(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void X11Connection::unwatch(std::uint32_t window) {
  if (window == rootWindow_) return;
  selectEvents(window, XCB_EVENT_MASK_NO_EVENT);
}

// If the window is gone, an error event arrives; nextEvent() returns it with no particular kind.
void X11Connection::selectEvents(std::uint32_t window, std::uint32_t eventMask) {
  xcb_change_window_attributes(connection_.get(), window, XCB_CW_EVENT_MASK, &eventMask);
}

std::optional<X11Properties> X11Connection::properties(std::uint32_t window,
                                                       const std::vector<std::uint32_t>& names) {
  std::vector<xcb_get_property_cookie_t> cookies;
  for (const std::uint32_t name : names) {
    cookies.push_back(
        xcb_get_property(connection_.get(), 0, window, name, XCB_ATOM_ANY, 0, kLongestProperty));
  }
  X11Properties properties;
  bool windowExists = true;
  for (const auto cookie : cookies) {
    xcb_generic_error_t* error = nullptr;
    const X11Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection_.get(), cookie, &error));
    const X11Owned<xcb_generic_error_t> ownedError(error);
    auto& property = properties.emplace_back();
    if (!reply) {
      windowExists = false;
    } else if (reply->type != XCB_ATOM_NONE) {
      property = {
          reply->type, reply->format,
          std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))};
    }
  }
  if (!windowExists) return std::nullopt;
  return properties;
}

bool X11Connection::hasReceivedEvent() {
  if (!received_) received_.reset(xcb_poll_for_queued_event(connection_.get()));
  return received_ != nullptr;
}

std::optional<X11Event> X11Connection::nextEvent() {
  X11Owned<void> taken = std::move(received_);
  if (!taken) taken.reset(xcb_poll_for_event(connection_.get()));
  if (!taken) return std::nullopt;
  constexpr unsigned kSentByClient = 0x80;
  const auto* event = static_cast<const xcb_generic_event_t*>(taken.get());
  switch (event->response_type & ~kSentByClient) {
    case XCB_PROPERTY_NOTIFY: {
      const auto* change = static_cast<const xcb_property_notify_event_t*>(taken.get());
      return X11Event{X11Event::Kind::propertyChanged, change->window, change->atom, change->time};
    }
    case XCB_DESTROY_NOTIFY: {
      const auto* end = static_cast<const xcb_destroy_notify_event_t*>(taken.get());
      return X11Event{X11Event::Kind::windowDestroyed, end->window, 0, 0};
    }
    default:
      return X11Event{X11Event::Kind::other, 0, 0, 0};
  }
}

}  // namespace tessum
