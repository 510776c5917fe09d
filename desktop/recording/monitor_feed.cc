#include "desktop/recording/monitor_feed.h"

#include <utility>

namespace tessum {

Workspace::ObserverToken MonitorFeed::ShownWorkspace::addActivationObserver(
    ActivationHandler handler) {
  observer = std::move(handler);
  return {};
}

MainLoop::TimerToken MonitorFeed::TitleLoop::startTimer(double, Task task) {
  lookForTitle = std::move(task);
  return {};
}

MonitorFeed::MonitorFeed(std::shared_ptr<SessionWriter> sessions)
    : monitor_(std::move(sessions), clock_, workspace_, loop_) {
  monitor_.start();
}

void MonitorFeed::begin(const RunningApplication& application,
                        const std::optional<std::string>& title, Date when) {
  clock_.date = when;
  workspace_.front = application;
  workspace_.title = title;
  workspace_.observer(application);
  loop_.lookForTitle();
}

void MonitorFeed::retitle(const std::string& title) {
  workspace_.title = title;
  loop_.lookForTitle();
}

void MonitorFeed::end(Date when) {
  clock_.date = when;
  workspace_.front.reset();
  workspace_.title.reset();
  workspace_.observer(std::nullopt);
}

}  // namespace tessum
