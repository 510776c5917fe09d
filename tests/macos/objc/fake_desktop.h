// The part of AppKit, Core Foundation, Core Graphics and the accessibility API that the core asks
// for what is in front and for input, as plain C++ that a test steers. It does what their
// documentation says, as far as we understand it: a test with it shows what our code does, not
// what macOS does.

#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/macos/objc/fake_runtime.h"

namespace tessum::fake {

// What AppKit hands out. Each call makes an object that belongs to the caller.
[[nodiscard]] Object* makeApplication(std::optional<std::u16string> name,
                                      std::optional<std::u16string> bundleIdentifier, int process);
[[nodiscard]] Object* makeText(std::u16string text);
[[nodiscard]] Object* makeWindow();

// The value that stands for the focused window when an attribute is asked of it.
inline constexpr int kWindow = -1;

// One desktop at a time: it is the shared workspace while it lives.
class Desktop {
 public:
  Desktop();
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  // Null: no application is in front. Takes over the caller's reference.
  void setFrontmost(Object* application);

  // Posts the activation notification with `value` under NSWorkspaceApplicationKey, or without
  // user info when it is null. Takes over the caller's reference.
  void postActivation(Object* value);

  // Runs what waits for the main queue.
  void runMainQueue();

  // How many registrations for activations there are.
  [[nodiscard]] std::size_t observers() const { return observers_.size(); }

  // What the accessibility API answers: a code of AXError and, where it is not null, a value that
  // belongs to the asker then.
  struct Attribute {
    int error = 0;
    Object* value = nullptr;
  };

  // Answers for the element of a process, or for kWindow.
  std::function<Attribute(int process, const std::string& name)> attribute;

  // What the event source answers, for all kinds of input to this session.
  double secondsSinceInput = 0;

 private:
  struct Observer;
  static void defineAnswers();
  static Desktop& current();

  Object* frontmost_ = nullptr;
  std::vector<Observer*> observers_;
  std::deque<std::function<void()>> mainQueue_;

  friend struct DesktopAnswers;
};

}  // namespace tessum::fake
