// The one file of Objective-C++: it passes on what AppKit tells, as standard types, and decides
// nothing. It defines no class and holds nothing weakly but through std::weak_ptr.

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <utility>

#include "core/workspace/mac/window_title.h"
#include "core/workspace/system_workspace.h"

namespace tessum {
namespace {

std::optional<std::string> textOf(NSString* text) {
  const char* bytes = text.UTF8String;
  if (bytes == nullptr) return std::nullopt;
  return bytes;
}

std::optional<RunningApplication> describe(NSRunningApplication* application) {
  if (application == nil) return std::nullopt;
  return RunningApplication{textOf(application.localizedName), textOf(application.bundleIdentifier),
                            application.processIdentifier};
}

class MacWorkspace final : public Workspace {
 public:
  ~MacWorkspace() override {
    while (!registrations_.empty()) removeObserver(registrations_.begin()->first);
  }

  ObserverToken addActivationObserver(ActivationHandler handler) override {
    @autoreleasepool {
      const auto shared = std::make_shared<ActivationHandler>(std::move(handler));
      const std::weak_ptr<ActivationHandler> weak = shared;
      id<NSObject> observer = [NSWorkspace.sharedWorkspace.notificationCenter
          addObserverForName:NSWorkspaceDidActivateApplicationNotification
                      object:nil
                       queue:NSOperationQueue.mainQueue
                  usingBlock:^(NSNotification* notification) {
                    id value = [notification.userInfo objectForKey:NSWorkspaceApplicationKey];
                    NSRunningApplication* application =
                        [value isKindOfClass:[NSRunningApplication class]] ? value : nil;
                    if (const auto call = weak.lock()) (*call)(describe(application));
                  }];
      const ObserverToken token{++lastToken_};
      registrations_[token] = {observer, shared};
      return token;
    }
  }

  void removeObserver(ObserverToken token) override {
    @autoreleasepool {
      const auto found = registrations_.find(token);
      if (found == registrations_.end()) return;
      [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:found->second.observer];
      registrations_.erase(found);
    }
  }

  std::optional<RunningApplication> frontmostApplication() override {
    @autoreleasepool {
      return describe(NSWorkspace.sharedWorkspace.frontmostApplication);
    }
  }

  std::optional<std::string> focusedWindowTitle(const RunningApplication& application) override {
    if (!application.processIdentifier) return std::nullopt;
    return focusedWindowTitleOf(*application.processIdentifier);
  }

 private:
  struct Registration {
    id<NSObject> observer = nil;
    std::shared_ptr<ActivationHandler> handler;
  };

  std::map<ObserverToken, Registration> registrations_;
  std::uint64_t lastToken_ = 0;
};

}  // namespace

// AppKit serves every session, so there is never anything to say.
std::unique_ptr<Workspace> openSystemWorkspace(SystemMainLoop&, WorkspaceNoticeHandler) {
  return std::make_unique<MacWorkspace>();
}

}  // namespace tessum
