// The checker's work happens on one queue, step by step: each step starts a transfer and returns,
// and the transfer's end is the next step. What the transfers tell comes from the HTTP client's
// threads and is posted to the queue, where it finds the worker only while the checker lives.

#include "core/update/update_checker.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <future>
#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "core/base/check.h"
#include "core/platform/folders.h"
#include "core/platform/temporary_file.h"
#include "core/update/file_name.h"
#include "core/update/urls.h"
#include "core/update/version.h"

namespace tessum {
namespace {

constexpr double kCheckInterval = 21600;  // seconds; six hours

// A release's description is a few kilobytes; a server that never ends must not fill the memory.
constexpr std::size_t kLongestDescription = std::size_t{16} << 20;

// What `make` gives or, in the words of what it throws, why it gives nothing.
template <typename Make>
auto attempt(Make make) -> Outcome<decltype(make())> {
  try {
    return make();
  } catch (const std::exception& error) {
    return Failure{error.what()};
  }
}

const ReleaseAsset* diskImageOf(const ReleaseInfo& release) {
  if (!release.assets) return nullptr;
  const auto found =
      std::find_if(release.assets->begin(), release.assets->end(),
                   [](const ReleaseAsset& asset) { return asset.name.ends_with(".dmg"); });
  return found == release.assets->end() ? nullptr : &*found;
}

std::vector<std::string> checkedBaseUrls(std::vector<std::string> urls) {
  TESSUM_CHECK(!urls.empty(), "the update checker has no base URL");
  for (const std::string& url : urls) {
    TESSUM_CHECK(isBaseUrl(url), "a base URL of the update checker is no absolute HTTPS URL");
  }
  return urls;
}

}  // namespace

// All that has a state. Queue only, but for what says otherwise.
class UpdateChecker::Worker : public std::enable_shared_from_this<Worker> {
 public:
  Worker(const Surroundings& surroundings, std::vector<std::string> baseUrls)
      : around_(surroundings), baseUrls_(checkedBaseUrls(std::move(baseUrls))) {}

  // Any thread.
  void setObserver(StateObserver observer) {
    const std::lock_guard lock(stateMutex_);
    observer_ = std::move(observer);
  }

  // Any thread.
  [[nodiscard]] UpdateState state() const {
    const std::lock_guard lock(stateMutex_);
    return state_;
  }

  // Runs `step` on the queue unless the worker is gone by then. Any thread.
  void post(std::function<void(Worker&)> step) {
    around_.queue.post([weak = weak_from_this(), step = std::move(step)] {
      if (const auto worker = weak.lock()) step(*worker);
    });
  }

  void check() {
    const auto running = around_.appInfo.version();
    if (!running) return;
    setState(update_state::Checking{});
    fetchLatestRelease(0, [this, running = *running](Outcome<ReleaseInfo> outcome) {
      setState(stateAfterCheck(std::move(outcome), running));
    });
  }

  // Asks the base URL number `base`, and those after it if need be.
  void fetchLatestRelease(std::size_t base, std::function<void(Outcome<ReleaseInfo>)> done) {
    const auto text = std::make_shared<std::string>();
    HttpEvents events;
    events.onData = [text](const HttpHead&, std::string_view bytes) {
      if (bytes.size() > kLongestDescription - text->size()) {
        throw std::length_error("The answer is too long");
      }
      text->append(bytes);
    };
    events.onEnd = [this, base, text, done](const HttpHead&,
                                            const std::optional<std::string>& failure) {
      auto outcome =
          failure ? Failure{*failure} : attempt([&] { return decodeReleaseInfo(*text); });
      const bool isLast = base + 1 == baseUrls_.size();
      if (!std::holds_alternative<Failure>(outcome) || isLast) return done(std::move(outcome));
      fetchLatestRelease(base + 1, done);
    };
    keep(around_.http.get(latestReleaseUrl(baseUrls_[base]), endingOnQueue(std::move(events))));
  }

  void downloadAndInstall(const ReleaseInfo& release) {
    const ReleaseAsset* const image = diskImageOf(release);
    if (image == nullptr) {
      return setState(update_state::Error{"No DMG asset found in release"});
    }
    setState(update_state::Downloading{0});
    downloadAsset(0, release.tag, image->name, [this](const Outcome<std::string>& outcome) {
      if (const auto* failure = std::get_if<Failure>(&outcome)) {
        return setState(update_state::Error{"Download failed: " + failure->description});
      }
      const auto& url = std::get<std::string>(outcome);
      setState(update_state::ReadyToInstall{url});
      around_.opener.open(url);
    });
  }

  // Downloads from the base URL number `base`, or from those after it if need be.
  void downloadAsset(std::size_t base, const std::string& tag, const std::string& name,
                     std::function<void(Outcome<std::string>)> done) {
    downloadFile(assetUrl(baseUrls_[base], tag, name),
                 [this, base, tag, name, done](Outcome<std::string> outcome) {
                   const bool isLast = base + 1 == baseUrls_.size();
                   if (!std::holds_alternative<Failure>(outcome) || isLast) {
                     return done(std::move(outcome));
                   }
                   downloadAsset(base + 1, tag, name, done);
                 });
  }

 private:
  // After each assignment the observer of that moment hears of it, later and on the main thread.
  // That is where a checker is destroyed, so a call cannot overlap with its end.
  void setState(UpdateState state) {
    StateObserver observer;
    {
      const std::lock_guard lock(stateMutex_);
      state_ = state;
      observer = observer_;
    }
    if (!observer) return;
    around_.mainLoop.post(
        [weak = weak_from_this(), observer = std::move(observer), state = std::move(state)] {
          if (!weak.expired()) observer(state);
        });
  }

  static UpdateState stateAfterCheck(Outcome<ReleaseInfo> outcome, const std::string& running) {
    if (const auto* failure = std::get_if<Failure>(&outcome)) {
      return update_state::Error{failure->description};
    }
    auto& release = std::get<ReleaseInfo>(outcome);
    if (!isNewer(versionOfTag(release.tag), running)) return update_state::UpToDate{};
    return update_state::Available{std::move(release)};
  }

  // `events` for the next transfer, with the end on the queue instead of the client's thread.
  HttpEvents endingOnQueue(HttpEvents events) {
    events.onEnd = [this, number = lastTransfer_ + 1, onEnd = std::move(events.onEnd)](
                       const HttpHead& head, const std::optional<std::string>& failure) {
      post([number, onEnd, head, failure](Worker& worker) {
        worker.transfers_.erase(number);
        onEnd(head, failure);
      });
    };
    return events;
  }

  void keep(std::unique_ptr<HttpTransfer> transfer) {
    transfers_[++lastTransfer_] = std::move(transfer);
  }

  // Starts one download. Its end, or that of an earlier one that still runs, calls `done`.
  void downloadFile(const std::string& url, std::function<void(Outcome<std::string>)> done) {
    downloadContinuation_ = std::move(done);
    // In the folder the file goes to, so that moving it there is a matter of its name alone.
    const auto file = attempt([this] {
      createPrivateFolders(updatesFolder());
      return std::make_shared<TemporaryFile>(updatesFolder(), "download");
    });
    if (const auto* failure = std::get_if<Failure>(&file)) return endDownload(*failure);
    HttpEvents events;
    events.onProgress = [this](const HttpHead& head, std::int64_t received) {
      const std::int64_t expected = head.contentLength.value_or(-1);
      post([received, expected](Worker& worker) { worker.showProgress(received, expected); });
    };
    events.onEnd = [this, file = std::get<0>(file)](const HttpHead& head,
                                                    const std::optional<std::string>& failure) {
      if (failure) return endDownload(Failure{*failure});
      endDownload(attempt([&] { return stored(*file, head); }));
    };
    keep(around_.http.download(url, std::get<0>(file)->descriptor(),
                               endingOnQueue(std::move(events))));
  }

  // Both in bytes. `expected` is below 1 when the server did not say.
  void showProgress(std::int64_t received, std::int64_t expected) {
    if (expected < 1) return;
    setState(
        update_state::Downloading{static_cast<double>(received) / static_cast<double>(expected)});
  }

  // Gives the downloaded file its name in the updates folder, instead of any that had it before.
  // The result is its URL.
  [[nodiscard]] std::string stored(TemporaryFile& file, const HttpHead& head) const {
    const std::string path =
        updatesFolder() + "/" + suggestedFileName(head.url, head.contentDisposition);
    std::remove(path.c_str());  // an empty folder, too, must not stand in the way
    file.moveTo(path);
    return fileUrl(path);
  }

  void endDownload(Outcome<std::string> outcome) {
    if (const auto done = std::exchange(downloadContinuation_, nullptr)) done(std::move(outcome));
  }

  [[nodiscard]] std::string updatesFolder() const {
    return around_.locations.dataFolder() + "/Updates";
  }

  const Surroundings around_;
  const std::vector<std::string> baseUrls_;

  mutable std::mutex stateMutex_;  // guards the two below, which are the queue's to change ...
  UpdateState state_;
  StateObserver observer_;  // ... and the owner's

  std::function<void(Outcome<std::string>)> downloadContinuation_;
  std::uint64_t lastTransfer_ = 0;

  // Last, as the destructor of a transfer waits for the event that may be under way.
  std::map<std::uint64_t, std::unique_ptr<HttpTransfer>> transfers_;
};

UpdateChecker::UpdateChecker(const Surroundings& surroundings)
    : UpdateChecker(surroundings, configuredBaseUrls()) {}

UpdateChecker::UpdateChecker(const Surroundings& surroundings, std::vector<std::string> baseUrls)
    : queue_(surroundings.queue),
      mainLoop_(surroundings.mainLoop),
      appInfo_(surroundings.appInfo),
      worker_(std::make_shared<Worker>(surroundings, std::move(baseUrls))) {}

UpdateChecker::~UpdateChecker() {
  TESSUM_CHECK(!queue_.isCurrent(), "an update checker was destroyed on its own queue");
  if (periodicTimer_) mainLoop_.invalidateTimer(*periodicTimer_);
  // The worker ends where it lives. Once it has, no step is under way and none will come.
  const auto hasEnded = std::make_shared<std::promise<void>>();
  queue_.post([this, hasEnded] {
    worker_.reset();
    hasEnded->set_value();
  });
  hasEnded->get_future().wait();
}

void UpdateChecker::setOnStateChange(StateObserver observer) {
  worker_->setObserver(std::move(observer));
}

UpdateState UpdateChecker::currentState() const {
  return worker_->state();
}

std::optional<std::string> UpdateChecker::appVersion() const {
  return appInfo_.version();
}

void UpdateChecker::startPeriodicChecks() {
  checkForUpdates();
  periodicTimer_ = mainLoop_.startTimer(kCheckInterval, [weak = std::weak_ptr(worker_)] {
    if (const auto worker = weak.lock()) worker->post(&Worker::check);
  });
}

void UpdateChecker::checkForUpdates() {
  worker_->post(&Worker::check);
}

void UpdateChecker::fetchLatestRelease(std::function<void(Outcome<ReleaseInfo>)> done) {
  worker_->post([done = std::move(done)](Worker& worker) { worker.fetchLatestRelease(0, done); });
}

void UpdateChecker::downloadAndInstall(const ReleaseInfo& release) {
  worker_->post([release](Worker& worker) { worker.downloadAndInstall(release); });
}

void UpdateChecker::downloadAsset(const std::string& tag, const std::string& assetName,
                                  std::function<void(Outcome<std::string>)> done) {
  worker_->post([tag, assetName, done = std::move(done)](Worker& worker) {
    worker.downloadAsset(0, tag, assetName, done);
  });
}

}  // namespace tessum
