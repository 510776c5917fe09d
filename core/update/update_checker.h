// Finds out about newer releases of the application and fetches them.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/fetch/http_client.h"
#include "core/loop/main_loop.h"
#include "core/loop/serial_queue.h"
#include "core/platform/app_info.h"
#include "core/platform/locations.h"
#include "core/platform/url_opener.h"
#include "core/update/release_info.h"
#include "core/update/update_state.h"

namespace tessum {

// Why an operation gave no value, in words for people.
struct Failure {
  std::string description;
};

// How an operation that runs by itself ended.
template <typename T>
using Outcome = std::variant<T, Failure>;

// Asks a release service for the newest release, now and then every six hours, and downloads it
// when told to. What it is doing it tells one observer, as UpdateState.
//
// The service has two base URLs; the second is asked when the first one fails. The status of an
// answer is not looked at: only whether the body is a release, and for a download not even that.
//
// Made and destroyed on the main thread; further calls say where they may come from. The work is
// done on the given queue, which should have nothing else to do, and never blocks the caller. The
// destructor waits for the step under way, not for the network: a check or download then ends, its
// temporary file is removed, and nothing is delivered any more.
class UpdateChecker {
 public:
  // The world outside. All of it must outlive the checker.
  struct Surroundings {
    HttpClient& http;
    SerialQueue& queue;
    MainLoop& mainLoop;
    const Locations& locations;
    const AppInfo& appInfo;
    const UrlOpener& opener;
  };

  using StateObserver = std::function<void(const UpdateState&)>;

  // Over the base URLs that the build was configured with. Nothing is asked yet.
  explicit UpdateChecker(const Surroundings& surroundings);

  // Over the given base URLs, in the order in which they are to be tried. A text that is not one,
  // and a list without any, stop the process.
  UpdateChecker(const Surroundings& surroundings, std::vector<std::string> baseUrls);

  ~UpdateChecker();
  UpdateChecker(const UpdateChecker&) = delete;
  UpdateChecker& operator=(const UpdateChecker&) = delete;

  // ----- State. Any thread. -----

  // Sets the one observer; an empty function takes it away. It is called on the main thread with
  // each state set from now on, in their order, also with one that equals the state before.
  void setOnStateChange(StateObserver observer);

  [[nodiscard]] UpdateState currentState() const;

  // The version of the running application; absent when it has none.
  [[nodiscard]] std::optional<std::string> appVersion() const;

  // ----- Checking. Any thread, but for the first. -----

  // Checks now and then every 21600 seconds. To be called once: a second call adds a second timer,
  // and both run until the checker goes. Main thread only.
  void startPeriodicChecks();

  // Sets `checking`, asks for the latest release, and sets `available`, `upToDate` or `error`. A
  // running download is not regarded. Does nothing when the application has no version.
  void checkForUpdates();

  // Asks for the latest release and calls `done` with it, or with the last failure, on the queue.
  // A checker that is destroyed meanwhile does not call it. The state stays as it is.
  void fetchLatestRelease(std::function<void(Outcome<ReleaseInfo>)> done);

  // ----- Downloading, one at a time. Any thread. -----

  // Downloads the first disk image (".dmg") of `release` into the folder "Updates" of the data
  // folder, under the name that the server suggests, and has it opened. Sets `downloading` as it
  // proceeds, as far as the server says how much there is, and in the end `readyToInstall` or
  // `error`. A second call before the end takes over from the first: whichever download ends next
  // ends the second call, and nothing is heard of the one left.
  void downloadAndInstall(const ReleaseInfo& release);

  // Downloads the file `assetName` of the release `tag` and calls `done` with the file URL of the
  // stored file, or with the last failure, on the queue; as above in every other respect, but for
  // the states other than `downloading`.
  void downloadAsset(const std::string& tag, const std::string& assetName,
                     std::function<void(Outcome<std::string>)> done);

 private:
  class Worker;

  SerialQueue& queue_;
  MainLoop& mainLoop_;
  const AppInfo& appInfo_;
  std::optional<MainLoop::TimerToken> periodicTimer_;
  std::shared_ptr<Worker> worker_;
};

}  // namespace tessum
