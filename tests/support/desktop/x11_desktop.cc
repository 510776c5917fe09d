#include "tests/support/desktop/x11_desktop.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace tessum {
namespace {

std::vector<std::string> allArguments(const std::vector<std::string>& more) {
  std::vector<std::string> all = {"-displayfd", "1", "-nolisten", "tcp",
                                  "-screen",    "0", "640x480x24"};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

void expect(bool happened, const char* what) {
  if (!happened) throw std::runtime_error(std::string("in vain: ") + what);
}

}  // namespace

Desktop::Desktop(const std::vector<std::string>& serverArguments)
    : server_("Xvfb",
              {.arguments = allArguments(serverArguments), .environment = {}, .prepare = {}}) {
  const auto number = server_.readLine();
  expect(number.has_value(), "a display of the X server");
  display_ = ":" + *number;
  connection_ = xcb_connect(display_.c_str(), nullptr);
  expect(xcb_connection_has_error(connection_) == 0, "a connection to the X server");
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
}

Desktop::~Desktop() {
  xcb_disconnect(connection_);
}

// The property that is deleted here comes back when the window manager has started.
void Desktop::startWindowManager() {
  xcb_delete_property(connection_, root_, atom("_NET_SUPPORTED"));
  windowManager_ = start("openbox", {"--sm-disable"});
  expect(eventually([&] { return firstNumber("_NET_SUPPORTED") != 0; }), "a window manager");
}

void Desktop::restartWindowManager() {
  const xcb_window_t active = activeWindow();
  xcb_delete_property(connection_, root_, atom("_NET_SUPPORTED"));
  run("openbox", {"--restart"});
  expect(eventually([&] { return firstNumber("_NET_SUPPORTED") != 0; }),
         "a window manager that starts anew");
  expect(eventually([&] { return activeWindow() == active; }), "the active window to come back");
}

xcb_window_t Desktop::addBareWindow() {
  const xcb_window_t window = xcb_generate_id(connection_);
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 200, 100, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  return window;
}

xcb_window_t Desktop::addWindow(const std::string& windowClass) {
  const xcb_window_t window = addBareWindow();
  using namespace std::string_literals;
  if (!windowClass.empty()) {
    setProperty(window, "WM_CLASS", "STRING", "instance\0"s + windowClass + "\0"s);
  }
  std::array<char, 256> host{};
  gethostname(host.data(), host.size() - 1);
  setProperty(window, "WM_CLIENT_MACHINE", "STRING", host.data());
  setNumber(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(getpid()));
  // No frame: painting it takes most of a window manager's time.
  constexpr std::uint32_t kNoFrame[] = {2, 0, 0, 0, 0};
  const xcb_atom_t hints = atom("_MOTIF_WM_HINTS");
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, hints, hints, 32,
                      std::size(kNoFrame), kNoFrame);
  xcb_map_window(connection_, window);
  xcb_flush(connection_);
  // A window manager that has just started may miss the window, so it is shown again until it is
  // active.
  const auto isActive = [&] {
    xcb_map_window(connection_, window);
    return activeWindow() == window;
  };
  if (windowManager_) expect(eventually(isActive), "a new window to be active");
  return window;
}

void Desktop::removeWindow(xcb_window_t window) {
  xcb_destroy_window(connection_, window);
  xcb_flush(connection_);
}

void Desktop::setProperty(xcb_window_t window, const std::string& name, const std::string& type,
                          const std::string& bytes) {
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 8,
                      static_cast<std::uint32_t>(bytes.size()), bytes.data());
  static_cast<void>(activeWindow());  // a round trip: it has arrived
}

void Desktop::focus(xcb_window_t window) {
  xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
  static_cast<void>(activeWindow());  // a round trip: it has arrived
}

void Desktop::request(xcb_window_t window) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom("_NET_ACTIVE_WINDOW");
  event.data.data32[0] = 2;  // as a pager asks: not to be refused
  xcb_send_event(connection_, 0, root_,
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
}

void Desktop::activate(xcb_window_t window) {
  request(window);
  while (activeWindow() != window) waitForChange();
}

xcb_window_t Desktop::activeWindow() {
  return firstNumber("_NET_ACTIVE_WINDOW");
}

xcb_window_t Desktop::manageWindows() {
  if (managerWindow_ != 0) xcb_destroy_window(connection_, managerWindow_);
  managerWindow_ = xcb_generate_id(connection_);
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, managerWindow_, root_, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  publishManager(managerWindow_);
  return managerWindow_;
}

void Desktop::publishManager(xcb_window_t window) {
  for (const xcb_window_t says : {window, root_}) {
    setNumber(says, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, window);
  }
}

void Desktop::publishActiveWindow(xcb_window_t window) {
  setNumber(root_, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, window);
}

void Desktop::publishNoActiveWindow() {
  xcb_delete_property(connection_, root_, atom("_NET_ACTIVE_WINDOW"));
  static_cast<void>(activeWindow());  // a round trip: it has arrived
}

xcb_atom_t Desktop::waitForChange() {
  constexpr int kMinute = 60'000;
  pollfd readable{xcb_get_file_descriptor(connection_), POLLIN, 0};
  while (true) {
    const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(
        xcb_poll_for_event(connection_), &std::free);
    if (event && event->response_type == XCB_PROPERTY_NOTIFY) {
      return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->atom;
    }
    expect(xcb_connection_has_error(connection_) == 0, "a change on an X server that is there");
    if (!event) expect(poll(&readable, 1, kMinute) != 0, "a change on the root window");
  }
}

void Desktop::setNumber(xcb_window_t window, const std::string& name, xcb_atom_t type,
                        std::uint32_t number) {
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &number);
  static_cast<void>(activeWindow());  // a round trip: it has arrived
}

xcb_atom_t Desktop::atom(const std::string& name) {
  const auto known = atoms_.find(name);
  if (known != atoms_.end()) return known->second;
  const auto cookie =
      xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(connection_, cookie, nullptr), &std::free);
  expect(reply != nullptr, "an atom");
  return atoms_[name] = reply->atom;
}

std::uint32_t Desktop::firstNumber(const std::string& name) {
  const auto cookie = xcb_get_property(connection_, 0, root_, atom(name), XCB_ATOM_ANY, 0, 1);
  const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
      xcb_get_property_reply(connection_, cookie, nullptr), &std::free);
  xcb_window_t window = 0;
  if (reply && xcb_get_property_value_length(reply.get()) >= static_cast<int>(sizeof window)) {
    std::memcpy(&window, xcb_get_property_value(reply.get()), sizeof window);
  }
  return window;
}

}  // namespace tessum
