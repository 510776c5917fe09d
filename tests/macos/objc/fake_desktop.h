// The part of AppKit, Core Foundation, Core Graphics and the accessibility API that the core uses
// for windows and input, as plain C++ that a test controls. It follows their documentation as we
// understand it: a test with it shows what our code does, not what macOS does.

#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/macos/objc/fake_runtime.h"

namespace tessum::fake {

// AppKit's objects. Each call creates an object that the caller owns.
[[nodiscard]] Object* makeApplication(std::optional<std::u16string> name,
                                      std::optional<std::u16string> bundleIdentifier, int process);
[[nodiscard]] Object* makeText(std::u16string text);
[[nodiscard]] Object* makeWindow();

// The value that represents the focused window in attribute queries.
inline constexpr int kWindow = -1;

// One desktop at a time: it is the shared workspace during its lifetime.
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

  // Runs the main queue's pending tasks.
  void runMainQueue();

  // How many registrations for activations there are.
  [[nodiscard]] std::size_t observers() const { return observers_.size(); }

  // The accessibility API's result: a code of AXError and a value, if not null, that the caller
  // then owns.
  struct Attribute {
    int error = 0;
    Object* value = nullptr;
  };

  // Answers for the element of a process, or for kWindow.
  std::function<Attribute(int process, const std::string& name)> attribute;

  // The event source's result for all kinds of input to this session.
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
