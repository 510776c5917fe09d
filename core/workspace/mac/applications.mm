// The only Objective-C++ file: it converts AppKit's values to standard types and contains no logic.
// It defines no Objective-C class and holds weak references only as std::weak_ptr.

#import <AppKit/AppKit.h>

#include <string>
#include <utility>

#include "core/workspace/mac/applications.h"

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

}  // namespace

std::optional<RunningApplication> activeApplication() {
  @autoreleasepool {
    return describe(NSWorkspace.sharedWorkspace.frontmostApplication);
  }
}

struct ActivationObserver::Registration {
  id<NSObject> observer = nil;
  std::shared_ptr<Handler> handler;
};

ActivationObserver::ActivationObserver(Handler handler)
    : registration_(std::make_unique<Registration>()) {
  @autoreleasepool {
    registration_->handler = std::make_shared<Handler>(std::move(handler));
    const std::weak_ptr<Handler> weak = registration_->handler;
    registration_->observer = [NSWorkspace.sharedWorkspace.notificationCenter
        addObserverForName:NSWorkspaceDidActivateApplicationNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification* notification) {
                  id value = [notification.userInfo objectForKey:NSWorkspaceApplicationKey];
                  NSRunningApplication* application =
                      [value isKindOfClass:[NSRunningApplication class]] ? value : nil;
                  if (const auto call = weak.lock()) (*call)(describe(application));
                }];
  }
}

ActivationObserver::~ActivationObserver() {
  @autoreleasepool {
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:registration_->observer];
  }
}

}  // namespace tessum
