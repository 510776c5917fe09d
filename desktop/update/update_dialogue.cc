#include "desktop/update/update_dialogue.h"

#include <cmath>
#include <memory>
#include <utility>
#include <variant>

#include "core/base/text.h"
#include "core/update/urls.h"
#include "core/update/version.h"
#include "desktop/host/host.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

// The tag comes from the network; a long one would fill the screen.
constexpr std::size_t kLongestVersion = 40;

std::string versionText(const ReleaseInfo& release) {
  return shortened(printable(versionOfTag(release.tag)), kLongestVersion);
}

std::string announcement(const ReleaseInfo& release, const std::string& running) {
  return "Tessum " + versionText(release) + " is available; this is " + running + ".";
}

}  // namespace

UpdateDialogue::UpdateDialogue(UpdateChecker& checker, const DownloadOpener& opener, bool downloads,
                               Delivery delivery, Output output,
                               std::function<void(int status)> onEnd)
    : checker_(checker),
      opener_(opener),
      downloads_(downloads),
      delivery_(delivery),
      output_(std::move(output)),
      onEnd_(std::move(onEnd)) {
  checker_.setOnStateChange([this](const UpdateState& state) {
    std::visit([this](const auto& reached) { on(reached); }, state);
  });
}

UpdateDialogue::~UpdateDialogue() {
  checker_.setOnStateChange(nullptr);
}

void UpdateDialogue::start() {
  const auto version = checker_.appVersion();
  if (!version) {
    output_.complain("This copy of Tessum does not know its own version, so it cannot tell.\n");
    return onEnd_(kFailure);
  }
  version_ = *version;
  checker_.checkForUpdates();
}

void UpdateDialogue::on(const update_state::Available& found) {
  output_.tell(announcement(found.release, version_) + "\n");
  if (downloads_ && delivery_.isDownload) return checker_.downloadAndInstall(found.release);
  const std::string instruction = delivery_.instruction + std::string("\n");
  if (downloads_) {
    output_.complain("Releases are not downloaded on this system. " + instruction);
    return onEnd_(kFailure);
  }
  output_.tell(instruction);
  onEnd_(kSuccess);
}

void UpdateDialogue::on(const update_state::UpToDate&) {
  output_.tell("Tessum " + version_ + " is up to date.\n");
  onEnd_(kSuccess);
}

void UpdateDialogue::on(const update_state::Downloading& download) {
  if (!output_.showProgress) return;
  std::string text = progressText(download.fraction);
  if (text == progress_) return;
  output_.showProgress(text);
  progress_ = std::move(text);
}

void UpdateDialogue::on(const update_state::ReadyToInstall& image) {
  clearProgress();
  const std::string path = printable(validUtf8(filePath(image.url)));
  output_.tell((opener_.hasOpened(image.url) ? "Downloaded and opened " : "Downloaded to ") + path +
               "\n");
  onEnd_(kSuccess);
}

void UpdateDialogue::on(const update_state::Error& error) {
  clearProgress();
  output_.complain(printable(error.message) + "\n");
  onEnd_(kFailure);
}

void UpdateDialogue::clearProgress() {
  if (!progress_.empty()) output_.showProgress("");
  progress_.clear();
}

std::string progressText(double fraction) {
  constexpr std::size_t kColumns = 40;
  const std::string filled = bar(fraction, kColumns);
  const std::string percent = std::to_string(static_cast<int>(std::floor(fraction * 100)));
  return "[" + filled + std::string(kColumns - displayWidth(filled), ' ') + "] " +
         std::string(3 - percent.size(), ' ') + percent + " %";
}

void announceReleases(UpdateChecker& checker, const Delivery& delivery, Say say) {
  const std::string running = checker.appVersion().value_or("");
  // Shared because each state is delivered to a copy of the observer.
  const auto announced = std::make_shared<std::string>();
  checker.setOnStateChange(
      [running, announced, delivery, say = std::move(say)](const UpdateState& state) {
        const auto* found = std::get_if<update_state::Available>(&state);
        if (found == nullptr || found->release.tag == *announced) return;
        *announced = found->release.tag;
        say(announcement(found->release, running) + " " + delivery.instruction + "\n");
      });
  checker.startPeriodicChecks();
}

}  // namespace tessum
