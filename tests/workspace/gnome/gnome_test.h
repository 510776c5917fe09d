// A session bus of the test's own, with a GNOME Shell on it that the test plays.

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/workspace/gnome/front_source.h"
#include "tests/support/bus/bus_linux.h"
#include "tests/support/environment.h"

namespace tessum {

inline constexpr char kExtension[] = "com.tessum.FocusedWindow";
inline constexpr char kExtensionPath[] = "/com/tessum/FocusedWindow";
inline constexpr char kShellPath[] = "/org/gnome/Shell";
inline constexpr char kExtensions[] = "org.gnome.Shell.Extensions";

// The extension, with a connection of its own: only its name distinguishes it from the shell's.
class FakeExtension {
 public:
  FakeExtension(SystemMainLoop& loop, const std::string& address, const std::string& windowClass,
                const std::string& title)
      : peer_(loop, address) {
    set(windowClass, title);
    peer_.takeName(kExtension);
  }

  // Answers with that window from now on; with none if both are empty.
  void set(const std::string& windowClass, const std::string& title) {
    peer_.answer(kExtensionPath, kExtension, "Get", [=](sd_bus_message* call) {
      sd_bus_reply_method_return(call, "(ssssu)", "", windowClass.c_str(), windowClass.c_str(),
                                 title.c_str(), 0);
    });
  }

  // The same, and announces it.
  void change(const std::string& windowClass, const std::string& title) {
    set(windowClass, title);
    peer_.emit(kExtensionPath, kExtension, "Changed", "(ssssu)", "", windowClass.c_str(),
               windowClass.c_str(), title.c_str(), 0);
  }

  [[nodiscard]] BusPeer& peer() { return peer_; }

 private:
  BusPeer peer_;
};

// With the reports of a source on that bus.
class GnomeTest : public testing::Test {
 protected:
  using Texts = std::vector<std::string>;

  GnomeTest() { place_.start(); }

  // A shell that knows the extension in that state, or not at all if that is 0.
  void startShell(double state) {
    startSilentShell();
    answer(state);
  }

  // A shell that has its name, and answers nothing yet.
  void startSilentShell() {
    shell_ = std::make_unique<BusPeer>(loop_, place_.address());
    shell_->takeName("org.gnome.Shell");
  }

  // Has the shell answer what it is asked about extensions.
  void answer(double state) {
    shell_->answer(kShellPath, "org.freedesktop.DBus.Properties", "GetAll",
                   [](sd_bus_message* call) {
                     sd_bus_reply_method_return(call, "a{sv}", 2, "ShellVersion", "s", "43.9",
                                                "UserExtensionsEnabled", "b", 1);
                   });
    shell_->answer(kShellPath, kExtensions, "GetExtensionInfo", [state](sd_bus_message* call) {
      const char* name = "";
      sd_bus_message_read(call, "s", &name);
      const bool isKnown = state != 0 && name == std::string("focused-window-44@tessum");
      sd_bus_reply_method_return(call, "a{sv}", isKnown ? 1 : 0, "state", "d", state);
    });
  }

  void startExtension(const std::string& windowClass, const std::string& title) {
    extension_ = std::make_unique<FakeExtension>(loop_, place_.address(), windowClass, title);
  }

  void startSource() {
    source_ = openGnomeFrontSource(loop_, clock_, bus_, DesktopEntries({}, {}), {folder_.path()},
                                   [this](const WorkspaceNotice& notice) {
                                     notices_.push_back(notice.text + " " + notice.remedy);
                                     isOver_ = notice.isFinal;
                                   });
    source_->start([this](const std::optional<Front>& front, Moment) {
      std::string text = front ? *front->application.localizedName : "none";
      if (front && front->title) text += ": " + *front->title;
      told_.push_back(text);
    });
  }

  // Waits until that is in front.
  [[nodiscard]] testing::AssertionResult comesTo(const std::string& front) {
    if (runUntil(loop_, [&] { return !told_.empty() && told_.back() == front; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << testing::PrintToString(told_) << " was told";
  }

  // Waits until a notice has been given that many times.
  [[nodiscard]] bool isNoticed(std::size_t times) {
    return runUntil(loop_, [&] { return notices_.size() >= times; });
  }

  // Waits until the shell has been called like that so many times.
  [[nodiscard]] bool isAsked(const std::string& call, int times) {
    return runUntil(loop_, [&] {
      return std::count(shell_->calls.begin(), shell_->calls.end(), call) >= times;
    });
  }

  SystemMainLoop loop_;
  const SystemSteadyClock clock_{};
  PrivateBus place_;
  const TemporaryFolder folder_;
  const ScopedVariable address_{"DBUS_SESSION_BUS_ADDRESS", place_.address().c_str()};
  std::unique_ptr<BusPeer> shell_;
  std::unique_ptr<FakeExtension> extension_;
  Texts told_;
  Texts notices_;
  bool isOver_ = false;
  const std::shared_ptr<Bus> bus_ =
      std::make_shared<Bus>(loop_, Bus::Kind::session,
                            Bus::Timing{.firstRetrySeconds = 0.01, .longestRetrySeconds = 0.05});
  std::unique_ptr<FrontSource> source_;
};

}  // namespace tessum
