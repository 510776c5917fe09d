// A desktop that a test controls.

#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/workspace/workspace.h"

namespace tessum {

// Lists the calls it gets, in order.
class FakeWorkspace final : public Workspace {
 public:
  ObserverToken addActivationObserver(ActivationHandler handler) override {
    calls.emplace_back("add observer");
    const ObserverToken token{++lastToken_};
    observers_[token] = std::move(handler);
    return token;
  }

  void removeObserver(ObserverToken token) override {
    calls.emplace_back("remove observer");
    observers_.erase(token);
  }

  std::optional<RunningApplication> frontmostApplication() override {
    calls.emplace_back("frontmost application");
    return frontmost;
  }

  std::optional<std::string> focusedWindowTitle(const RunningApplication& application) override {
    calls.emplace_back("title of " + application.localizedName.value_or("?"));
    return title;
  }

  // Puts `application` in front and notifies the observers.
  void activate(std::optional<RunningApplication> application) {
    frontmost = std::move(application);
    tell(frontmost);
  }

  // Notifies the observers of an activation without changing what is in front.
  void tell(const std::optional<RunningApplication>& application) {
    const auto observers = observers_;
    for (const auto& [token, handler] : observers) handler(application);
  }

  [[nodiscard]] std::size_t observerCount() const { return observers_.size(); }

  std::optional<RunningApplication> frontmost;
  std::optional<std::string> title;
  std::vector<std::string> calls;

 private:
  std::map<ObserverToken, ActivationHandler> observers_;
  std::uint64_t lastToken_ = 0;
};

}  // namespace tessum
