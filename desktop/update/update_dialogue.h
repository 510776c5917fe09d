// Tells a person about new releases.

#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/update/update_checker.h"
#include "desktop/update/delivery.h"
#include "desktop/update/download_opener.h"

namespace tessum {

// Prints one line of text, which ends in a line feed.
using Say = std::function<void(std::string_view line)>;

// The command "update": one check and, if that is requested and the system's way, the download of
// the new release. Main thread only.
class UpdateDialogue {
 public:
  struct Output {
    Say tell;      // results
    Say complain;  // failures

    // Shows `text` in place of the previous text; an empty function when output is not a terminal.
    std::function<void(std::string_view text)> showProgress;
  };

  // Becomes the observer of `checker`, whose opener is `opener`; both must outlive this object.
  // `onEnd` is called once, with the exit status.
  UpdateDialogue(UpdateChecker& checker, const DownloadOpener& opener, bool downloads,
                 Delivery delivery, Output output, std::function<void(int status)> onEnd);
  ~UpdateDialogue();
  UpdateDialogue(const UpdateDialogue&) = delete;
  UpdateDialogue& operator=(const UpdateDialogue&) = delete;

  void start();

 private:
  void on(const update_state::Idle&) {}
  void on(const update_state::Checking&) {}
  void on(const update_state::Available& found);
  void on(const update_state::UpToDate&);
  void on(const update_state::Downloading& download);
  void on(const update_state::ReadyToInstall& image);
  void on(const update_state::Error& error);
  void clearProgress();

  UpdateChecker& checker_;
  const DownloadOpener& opener_;
  const bool downloads_;
  const Delivery delivery_;
  const Output output_;
  const std::function<void(int)> onEnd_;
  std::string version_;   // the running one
  std::string progress_;  // as last shown
};

// A download's progress as one line of text, such as "[████      ]  40 %".
[[nodiscard]] std::string progressText(double fraction);

// Checks now and every six hours, and prints one line for each release that is newer than the
// running version and how to get it. Does not report failures. Becomes the observer of `checker`.
// Main thread only.
void announceReleases(UpdateChecker& checker, const Delivery& delivery, Say say);

}  // namespace tessum
