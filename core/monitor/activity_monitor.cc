#include "core/monitor/activity_monitor.h"

#include <utility>

namespace tessum {
namespace {

constexpr double kTitlePollSeconds = 5.0;

// The one place where the monitor handles failures of the database. It ignores them, because there
// is nobody to report them to; recording continues with the next activation.
template <typename Write>
void dropStoreErrors(Write write) {
  try {
    write();
  } catch (const DatabaseError&) {
  }
}

}  // namespace

ActivityMonitor::ActivityMonitor(std::shared_ptr<SessionWriter> database, const Clock& clock,
                                 Workspace& workspace, MainLoop& loop)
    : database_(std::move(database)),
      clock_(clock),
      workspace_(workspace),
      loop_(loop),
      self_(std::make_shared<ActivityMonitor*>(this)) {}

ActivityMonitor::~ActivityMonitor() {
  stop();
}

void ActivityMonitor::start() {
  const std::weak_ptr<ActivityMonitor*> weak = self_;
  observer_ = workspace_.addActivationObserver(
      [weak](const std::optional<RunningApplication>& application) {
        if (const auto self = weak.lock()) (*self)->handleActivation(application);
      });
  titlePollTimer_ = loop_.startTimer(kTitlePollSeconds, [weak] {
    if (const auto self = weak.lock()) (*self)->updateCurrentTitle();
  });
  if (const auto application = workspace_.frontmostApplication()) handleActivation(application);
}

void ActivityMonitor::stop() {
  if (observer_) workspace_.removeObserver(*observer_);
  observer_.reset();
  if (titlePollTimer_) loop_.invalidateTimer(*titlePollTimer_);
  titlePollTimer_.reset();
  endCurrentActivity();
}

void ActivityMonitor::handleActivation(const std::optional<RunningApplication>& application) {
  endCurrentActivity();
  if (!application) return;
  const Activity activity{.id = std::nullopt,
                          .appName = application->localizedName.value_or("Unknown"),
                          .bundleID = application->bundleIdentifier,
                          .title = std::nullopt,
                          .startTime = clock_.now(),
                          .endTime = std::nullopt};
  dropStoreErrors([&] {
    currentActivityID_ = database_->insert(activity);
    lastTitle_.reset();
  });
}

void ActivityMonitor::updateCurrentTitle() {
  if (!currentActivityID_) return;
  const auto application = workspace_.frontmostApplication();
  if (!application) return;
  auto title = windowTitle(*application);
  if (title == lastTitle_) return;
  lastTitle_ = std::move(title);
  if (!lastTitle_) return;  // a title is never cleared
  dropStoreErrors([&] { database_->updateTitle(*currentActivityID_, *lastTitle_); });
}

std::optional<std::string> ActivityMonitor::windowTitle(const RunningApplication& application) {
  auto title = workspace_.focusedWindowTitle(application);
  if (title && title->empty()) return std::nullopt;
  return title;
}

void ActivityMonitor::endCurrentActivity() {
  if (!currentActivityID_) return;
  dropStoreErrors([&] { database_->updateEndTime(*currentActivityID_, clock_.now()); });
  currentActivityID_.reset();
}

}  // namespace tessum
