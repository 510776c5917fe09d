// An X11 desktop for a test.

#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/desktop/test_desktop.h"
#include "tests/support/eventually.h"

namespace tessum {

// An X server without a screen, and the programs started on it, which end with the object.
class Desktop final : public TestDesktop {
 public:
  // `serverArguments` are further arguments for the X server.
  explicit Desktop(const std::vector<std::string>& serverArguments = {});
  ~Desktop() override;

  // The display's name, such as ":7".
  [[nodiscard]] const std::string& display() const { return display_; }

  [[nodiscard]] xcb_window_t rootWindow() const { return root_; }

  // Starts the window manager and waits until it works.
  void startWindowManager();

  // Restarts it, and waits until it manages again.
  void restartWindowManager();

  // Kills it, as in a crash.
  void killWindowManager() { windowManager_.reset(); }

  // Ends the X server.
  void killServer() { server_.kill(); }

  //////////////////////////////////////////////////////////////////////////////////////////////
  // Windows of the test's own process.

  // Makes a window of that class and, if there is a window manager, waits until it is active.
  xcb_window_t addWindow(const std::string& windowClass);

  // Makes a window without any property, and does not show it.
  xcb_window_t addBareWindow();

  void removeWindow(xcb_window_t window);

  // Sets a text property of a window.
  void setProperty(xcb_window_t window, const std::string& name, const std::string& type,
                   const std::string& bytes);

  // Sets a property to one number.
  void setNumber(xcb_window_t window, const std::string& name, xcb_atom_t type,
                 std::uint32_t number);

  // Gives a window the keyboard focus.
  void focus(xcb_window_t window);

  // Asks the window manager to activate a window, and does not wait for it.
  void request(xcb_window_t window);

  // Asks for it, and waits until the window is active.
  void activate(xcb_window_t window);

  // The active window as the window manager publishes it; 0 when there is none.
  [[nodiscard]] xcb_window_t activeWindow();

  //////////////////////////////////////////////////////////////////////////////////////////////
  // What a window manager does, for tests that play one.

  // Announces a window manager, a new one at each call. Returns the window that stands for it.
  xcb_window_t manageWindows();

  // Names `window` as the one for the check, on the root window and on itself.
  void publishManager(xcb_window_t window);

  void publishActiveWindow(xcb_window_t window);
  void publishNoActiveWindow();

 private:
  [[nodiscard]] std::vector<std::string> variables() const override {
    return {"DISPLAY=" + display_, "WAYLAND_DISPLAY="};
  }
  [[nodiscard]] xcb_atom_t atom(const std::string& name);

  // Waits for the next change of a property of the root window, and returns its name.
  xcb_atom_t waitForChange();

  [[nodiscard]] std::uint32_t firstNumber(const std::string& name);

  ChildProcess server_;
  std::string display_;
  std::unique_ptr<ChildProcess> windowManager_;
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = 0;
  xcb_window_t managerWindow_ = 0;
  std::map<std::string, xcb_atom_t> atoms_;
};

}  // namespace tessum
