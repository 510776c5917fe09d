#include "core/update/update_checker.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

#include "core/base/check.h"
#include "core/platform/private_files.h"
#include "core/update/file_name.h"
#include "core/update/urls.h"
#include "core/update/version.h"

namespace tessum {
namespace {

constexpr double kCheckInterval = 21600;  // seconds; six hours

// A release's description has a few kilobytes. Decoding takes many times the memory of the text.
constexpr std::size_t kLongestDescription = std::size_t{1} << 20;

// The result of `make` or, if it throws, the description of the error.
template <typename Make>
auto attempt(Make make) -> Outcome<decltype(make())> {
  try {
    return make();
  } catch (const std::exception& error) {
    return Failure{error.what()};
  }
}

template <typename T>
bool isFailure(const Outcome<T>& outcome) {
  return std::holds_alternative<Failure>(outcome);
}

UpdateState stateAfterCheck(Outcome<ReleaseInfo> outcome, const std::string& running) {
  if (const auto* failure = std::get_if<Failure>(&outcome)) {
    return update_state::Error{failure->description};
  }
  auto& release = std::get<ReleaseInfo>(outcome);
  if (!isNewer(versionOfTag(release.tag), running)) return update_state::UpToDate{};
  return update_state::Available{std::move(release)};
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

UpdateChecker::UpdateChecker(const Surroundings& surroundings)
    : UpdateChecker(surroundings, configuredBaseUrls()) {}

UpdateChecker::UpdateChecker(const Surroundings& surroundings, std::vector<std::string> baseUrls)
    : around_(surroundings), baseUrls_(checkedBaseUrls(std::move(baseUrls))) {}

UpdateChecker::~UpdateChecker() {
  if (periodicTimer_) around_.mainLoop.invalidateTimer(*periodicTimer_);
}

std::optional<std::string> UpdateChecker::appVersion() const {
  return around_.appInfo.version();
}

void UpdateChecker::startPeriodicChecks() {
  checkForUpdates();
  periodicTimer_ =
      around_.mainLoop.startTimer(kCheckInterval, [this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired()) checkForUpdates();
      });
}

void UpdateChecker::checkForUpdates() {
  const auto running = appVersion();
  if (!running) return;
  setState(update_state::Checking{});
  fetchLatestRelease([this, running = *running](Outcome<ReleaseInfo> outcome) {
    setState(stateAfterCheck(std::move(outcome), running));
  });
}

void UpdateChecker::fetchLatestRelease(Done<ReleaseInfo> done) {
  fetchLatestRelease(0, std::move(done));
}

void UpdateChecker::fetchLatestRelease(std::size_t base, Done<ReleaseInfo> done) {
  const auto transfer = transfers_.emplace(transfers_.end());
  *transfer = around_.http.get(
      latestReleaseUrl(baseUrls_[base]), kLongestDescription,
      [this, transfer, base, done = std::move(done)](const HttpResult& result) {
        transfers_.erase(transfer);
        auto outcome = result.failure ? Failure{*result.failure}
                                      : attempt([&] { return decodeReleaseInfo(result.body); });
        const bool isLast = base + 1 == baseUrls_.size();
        if (isLast || !isFailure(outcome)) return done(std::move(outcome));
        fetchLatestRelease(base + 1, done);
      });
}

void UpdateChecker::downloadAndInstall(const ReleaseInfo& release) {
  const ReleaseAsset* const image = diskImageOf(release);
  if (image == nullptr) return setState(update_state::Error{"No DMG asset found in release"});
  setState(update_state::Downloading{0});
  downloadAsset(release.tag, image->name, [this](const Outcome<std::string>& outcome) {
    if (const auto* failure = std::get_if<Failure>(&outcome)) {
      return setState(update_state::Error{"Download failed: " + failure->description});
    }
    const auto& url = std::get<std::string>(outcome);
    setState(update_state::ReadyToInstall{url});
    around_.opener.open(url);
  });
}

void UpdateChecker::downloadAsset(const std::string& tag, const std::string& assetName,
                                  Done<std::string> done) {
  downloadAsset(0, tag, assetName, std::move(done));
}

void UpdateChecker::downloadAsset(std::size_t base, const std::string& tag, const std::string& name,
                                  Done<std::string> done) {
  downloadFile(assetUrl(baseUrls_[base], tag, name),
               [this, base, tag, name, done = std::move(done)](Outcome<std::string> outcome) {
                 const bool isLast = base + 1 == baseUrls_.size();
                 if (isLast || !isFailure(outcome)) return done(std::move(outcome));
                 downloadAsset(base + 1, tag, name, done);
               });
}

// Starts one download. Its end, or that of an earlier one that still runs, calls `done`.
void UpdateChecker::downloadFile(const std::string& url, Done<std::string> done) {
  downloadContinuation_ = std::move(done);
  // In the folder the file goes to, so that moving it there is a matter of its name alone.
  auto made = attempt([this] {
    createPrivateFolders(updatesFolder());
    return std::make_shared<TemporaryFile>(updatesFolder(), "download");
  });
  if (const auto* failure = std::get_if<Failure>(&made)) {
    around_.mainLoop.post([this, alive = std::weak_ptr(alive_), failure = *failure] {
      if (!alive.expired()) endDownload(failure);
    });
    return;
  }
  const auto& file = std::get<std::shared_ptr<TemporaryFile>>(made);
  const auto transfer = transfers_.emplace(transfers_.end());
  *transfer = around_.http.download(
      url, file->descriptor(),
      [this](const HttpHead& head, std::int64_t received) {
        const auto expected = head.contentLength.value_or(0);
        if (expected < 1) return;
        setState(update_state::Downloading{static_cast<double>(received) /
                                           static_cast<double>(expected)});
      },
      [this, transfer, file](const HttpResult& result) {
        transfers_.erase(transfer);
        if (result.failure) return endDownload(Failure{*result.failure});
        endDownload(attempt([&] { return store(*file, result.head); }));
      });
}

// Gives the downloaded file its name in the updates folder, instead of any that had it before. The
// result is its URL.
std::string UpdateChecker::store(TemporaryFile& file, const HttpHead& head) const {
  const std::string path =
      updatesFolder() + "/" + suggestedFileName(head.url, head.contentDisposition);
  std::remove(path.c_str());  // an empty folder, too, must not stand in the way
  file.moveTo(path);
  return fileUrl(path);
}

void UpdateChecker::endDownload(Outcome<std::string> outcome) {
  if (const auto done = std::exchange(downloadContinuation_, nullptr)) done(std::move(outcome));
}

// The present observer is told of the state later, unless the checker is gone by then.
void UpdateChecker::setState(UpdateState state) {
  state_ = std::move(state);
  if (!observer_) return;
  around_.mainLoop.post([alive = std::weak_ptr(alive_), observer = observer_, state = state_] {
    if (!alive.expired()) observer(state);
  });
}

std::string UpdateChecker::updatesFolder() const {
  return around_.locations.dataFolder() + "/Updates";
}

}  // namespace tessum
