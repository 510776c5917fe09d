// A private, headless Wayland compositor, and what the tests of all compositors have in common.

#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/test_desktop.h"

namespace tessum {

// Whether PATH has a program of that name.
[[nodiscard]] bool isInstalled(const std::string& program);

// The compositor and its programs run as an ordinary user with a runtime folder of their own, and
// end with the object. Without buses of its own it reaches none.
class Compositor : public TestDesktop {
 public:
  // Ends it, as in a crash.
  void kill() { process_->kill(); }

  // Stops and continues it, as if it hung.
  void freeze() { process_->kill(SIGSTOP); }
  void thaw() { process_->kill(SIGCONT); }

  // Has logind, where there is one, ask for the screen to be locked or unlocked.
  void lock() const { logind_->writeLine("Lock"); }
  void unlock() const { logind_->writeLine("Unlock"); }

  // Adds a desktop entry for the recorder; `keys` are further lines.
  void addDesktopEntry(const std::string& id, const std::string& name,
                       const std::string& keys = "") const;

 protected:
  Compositor();

  [[nodiscard]] std::string runtimeFile(const std::string& name) const {
    return home().file("run/" + name);
  }

  // Starts the program and waits until `isReady`. Throws std::runtime_error with its output when it
  // does not become ready.
  void launch(const std::string& program, const std::vector<std::string>& arguments,
              const std::vector<std::string>& environment, const std::function<bool()>& isReady);

  // What it has written to standard error.
  [[nodiscard]] std::string errors() const { return process_->errors(); }

  // The displays that the compositor has made.
  void setDisplays(const std::string& wayland, const std::string& x11);

  // Gives it and its programs buses of their own, of the session and of the system, and a logind.
  // Returns the address of the session's.
  std::string startBuses();

  [[nodiscard]] std::vector<std::string> variables() const override;

 private:
  [[nodiscard]] std::string startBus(const std::string& name);

  std::vector<std::string> displays_{"WAYLAND_DISPLAY=", "DISPLAY="};
  std::string session_ = "unix:path=/nonexistent";  // the addresses of the buses
  std::string system_ = session_;
  std::vector<std::unique_ptr<ChildProcess>> buses_;
  std::unique_ptr<ChildProcess> logind_;
  std::unique_ptr<ChildProcess> process_;
};

// A window whose title the test sets: a terminal that shows what it is told.
class TerminalWindow {
 public:
  // `program` is foot or xterm, or another with their arguments.
  TerminalWindow(const Compositor& compositor, const std::string& program,
                 const std::string& title);
  ~TerminalWindow();
  TerminalWindow(const TerminalWindow&) = delete;
  TerminalWindow& operator=(const TerminalWindow&) = delete;

  void setTitle(const std::string& title);
  void close() { process_->kill(); }

 private:
  int pipe_ = -1;
  std::unique_ptr<ChildProcess> process_;
};

// A test with a recorder on a compositor. The rows are those of the recorder's sessions, one after
// another.
template <typename Desktop>
class CompositorTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!isInstalled(Desktop::kProgram)) GTEST_SKIP() << Desktop::kProgram << " is not installed";
    desktop_.emplace();
  }

  void record(const std::vector<std::string>& arguments = {}) {
    recorder_.emplace(*desktop_, arguments);
  }

  // Whether the session before ends and one of `row` begins, as "name|identifier|title".
  [[nodiscard]] testing::AssertionResult shows(const std::string& row) {
    endLast();
    rows_.push_back(row + "|open");
    return comesTo();
  }

  // Whether the title of the open session becomes another.
  [[nodiscard]] testing::AssertionResult showsAgain(const std::string& row) {
    rows_.back() = row + "|open";
    return comesTo();
  }

  // Whether the session ends and no other begins.
  [[nodiscard]] testing::AssertionResult showsNothing() {
    endLast();
    return comesTo();
  }

  // Stops the recorder, which must have reported no problem, and checks all rows once more.
  void stopRecorder() {
    recorder_->process().kill(SIGTERM);
    EXPECT_EQ(recorder_->process().wait(), kSuccess);
    EXPECT_EQ(recorder_->process().errors(), "");
    endLast();
    EXPECT_EQ(recorder_->sessions(), rows_);
  }

  std::optional<Desktop> desktop_;
  std::optional<Recorder> recorder_;
  Recorder::Rows rows_;

 private:
  void endLast() {
    if (rows_.empty() || rows_.back().ends_with("|closed")) return;
    rows_.back().replace(rows_.back().rfind('|'), std::string::npos, "|closed");
  }

  [[nodiscard]] testing::AssertionResult comesTo() const {
    if (recorder_->comesTo(rows_)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "expected " << testing::PrintToString(rows_) << ", got "
                                       << testing::PrintToString(recorder_->sessions());
  }
};

}  // namespace tessum
