// Finds out about newer releases of the application and fetches them.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/fetch/http_client.h"
#include "core/loop/main_loop.h"
#include "core/platform/app_info.h"
#include "core/platform/locations.h"
#include "core/platform/temporary_file.h"
#include "core/platform/url_opener.h"
#include "core/update/release_info.h"
#include "core/update/update_state.h"

namespace tessum {

// Why an operation gave no value, in words for people.
struct Failure {
  std::string description;
};

// The outcome of an operation that outlasts its call.
template <typename T>
using Outcome = std::variant<T, Failure>;

// Asks a release service for the newest release, now and then every six hours, and downloads it
// when told to. It reports its progress to one observer, as UpdateState.
//
// The service has two base URLs; the second is asked when the first one fails. The status of an
// answer plays no part, only whether the body is a release; and the body of a download may be
// anything.
//
// No call waits for the network: each returns at once, and callbacks come later, from the main
// loop. Destroying the checker ends a check or a download at once and removes its temporary file;
// no callback runs any more. Every callback may destroy the checker. Main thread only.
class UpdateChecker {
 public:
  // The world outside. All of it must outlive the checker.
  struct Surroundings {
    HttpClient& http;
    MainLoop& mainLoop;
    const Locations& locations;
    const AppInfo& appInfo;
    const UrlOpener& opener;
  };

  using StateObserver = std::function<void(const UpdateState&)>;

  template <typename T>
  using Done = std::function<void(Outcome<T>)>;

  // Over the base URLs that the build was configured with. Nothing is asked yet. A build without
  // any must not make a checker.
  explicit UpdateChecker(const Surroundings& surroundings);

  // Over the given base URLs, in the order in which they are to be tried. A text that is not one,
  // and a list without any, stop the process.
  UpdateChecker(const Surroundings& surroundings, std::vector<std::string> baseUrls);

  ~UpdateChecker();
  UpdateChecker(const UpdateChecker&) = delete;
  UpdateChecker& operator=(const UpdateChecker&) = delete;

  // ----- State -----

  // Sets the one observer; an empty function removes it. It is told of each state that is set from
  // now on, in order, even of one that equals the state before.
  void setOnStateChange(StateObserver observer) { observer_ = std::move(observer); }

  [[nodiscard]] UpdateState currentState() const { return state_; }

  // The version of the running application; absent when it has none.
  [[nodiscard]] std::optional<std::string> appVersion() const;

  // ----- Checking -----

  // Checks now and then every 21600 seconds. To be called once: a second call adds a second timer.
  // Destroying the checker stops the last timer; an earlier one goes on and does nothing.
  void startPeriodicChecks();

  // Sets `checking`, asks for the latest release, and sets `available`, `upToDate` or `error`. A
  // running download goes on. Does nothing when the application has no version.
  void checkForUpdates();

  // Asks for the latest release and calls `done` with it, or with the last failure. The state stays
  // as it is.
  void fetchLatestRelease(Done<ReleaseInfo> done);

  // ----- Downloading, one at a time -----

  // Downloads the first disk image (".dmg") of `release` into the folder "Updates" of the data
  // folder, under the name that the server suggests, and hands it to the opener. Sets `downloading`
  // again with each piece when the server says how long the file is, and at the end
  // `readyToInstall` or `error`. Only one call can be pending: a second one takes the place of the
  // first, and the download that ends first ends it. The end of the other download is dropped.
  void downloadAndInstall(const ReleaseInfo& release);

  // Downloads the file `assetName` of the release `tag` in the same way, but opens nothing and sets
  // no state except `downloading`. Calls `done` with the file URL of the stored file, or with the
  // last failure.
  void downloadAsset(const std::string& tag, const std::string& assetName, Done<std::string> done);

 private:
  using Transfers = std::list<std::unique_ptr<HttpTransfer>>;

  // Asks the base URL number `base`, and those after it if need be.
  void fetchLatestRelease(std::size_t base, Done<ReleaseInfo> done);
  void downloadAsset(std::size_t base, const std::string& tag, const std::string& name,
                     Done<std::string> done);

  void downloadFile(const std::string& url, Done<std::string> done);
  [[nodiscard]] std::string store(TemporaryFile& file, const HttpHead& head) const;
  void endDownload(Outcome<std::string> outcome);
  void setState(UpdateState state);
  [[nodiscard]] std::string updatesFolder() const;

  const Surroundings around_;
  const std::vector<std::string> baseUrls_;
  UpdateState state_;
  StateObserver observer_;
  std::optional<MainLoop::TimerToken> periodicTimer_;
  Done<std::string> downloadContinuation_;
  Transfers transfers_;  // those under way

  // Goes with the checker. What the main loop runs later holds it weakly.
  const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace tessum
