// Windows in front on GNOME, as our extension of GNOME Shell reports them.
//
// The extension runs in the shell and has a name on the bus of its own, which comes and goes with
// it: the shell starts it after itself, and stops it while the screen is locked. Each of its
// messages holds the whole state, and messages of one sender keep their order, so the last one is
// the state, whether it is an answer or a signal.

#include "core/workspace/gnome/front_source.h"

#include <optional>
#include <utility>

#include "core/bus/bus_name.h"
#include "core/workspace/gnome/shell_extension.h"
#include "core/workspace/linux/focused_window.h"
#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/window_identifier.h"

namespace tessum {
namespace {

constexpr char kShell[] = "org.gnome.Shell";
constexpr char kExtension[] = "com.tessum.FocusedWindow";
constexpr char kWindowPath[] = "/com/tessum/FocusedWindow";

class GnomeFrontSource final : public FrontSource {
 public:
  GnomeFrontSource(SystemMainLoop& loop, const SteadyClock& clock, std::shared_ptr<Bus> session,
                   DesktopEntries entries, std::vector<std::string> dataFolders,
                   WorkspaceNoticeHandler notice)
      : loop_(loop),
        clock_(clock),
        session_(std::move(session)),
        identifier_(std::move(entries)),
        dataFolders_(std::move(dataFolders)),
        notice_(std::move(notice)),
        tracker_(loop, [this](const auto& front, Moment since) { handler_(front, since); }) {}

  // We look for the extension before the shell, so we know whether it runs once we know of the
  // shell.
  void start(Handler handler) override {
    handler_ = std::move(handler);
    tracker_.show(std::nullopt, clock_.now());
    extension_.emplace(*session_, kExtension, [this](const std::string& owner) { follow(owner); });
    shell_.emplace(*session_, kShell, [this](const std::string& owner) { setShell(owner); });
  }

  [[nodiscard]] std::string way() const override { return "GNOME Shell's extension"; }

 private:
  void follow(const std::string& owner) {
    owner_ = owner;
    changes_ = nullptr;
    question_ = nullptr;
    lookForExtension();
    if (owner.empty()) return tracker_.show(std::nullopt, clock_.now());
    changes_ = session_->subscribe(
        {.sender = owner, .path = kWindowPath, .interface = kExtension, .member = "Changed"},
        [this](const BusMessage& signal) { show(signal); });
    question_ = session_->call({owner, kWindowPath, kExtension, "Get"},
                               [this](const BusMessage& reply) { show(reply); });
  }

  void setShell(const std::string& owner) {
    const bool hadShell = !shellOwner_.empty();
    shellOwner_ = owner;
    lookForExtension();
    if (!hadShell || !owner.empty()) return;
    if (session_->isConnected()) {
      tracker_.clear(clock_.now());
      notice_({"GNOME Shell has ended; nothing more can be recorded.", true});
    } else {
      notice_({"The session's message bus has gone away; recording continues when it is back."});
    }
  }

  // Finds out why a shell that is there does not run the extension.
  void lookForExtension() {
    inquiry_.reset();
    if (shellOwner_.empty() || !owner_.empty()) return;
    inquiry_.emplace(loop_, *session_, shellOwner_, dataFolders_,
                     [this](const WorkspaceNotice& notice) { say(notice); });
  }

  // We ask the shell often, but its answer rarely changes.
  void say(const WorkspaceNotice& notice) {
    if (said_ == notice.text) return;
    said_ = notice.text;
    notice_(notice);
  }

  void show(const BusMessage& message) {
    showFocusedWindow(message, identifier_, clock_.now(), tracker_);
  }

  SystemMainLoop& loop_;
  const SteadyClock& clock_;
  const std::shared_ptr<Bus> session_;
  WindowIdentifier identifier_;
  const std::vector<std::string> dataFolders_;
  const WorkspaceNoticeHandler notice_;
  Handler handler_;
  FrontTracker tracker_;
  std::string owner_;       // of the extension's name
  std::string shellOwner_;  // of the shell's
  std::string said_;        // the notice of the extension given last
  BusSlot changes_;
  BusSlot question_;
  std::optional<ShellExtension> inquiry_;  // while the shell is there without the extension
  std::optional<BusName> extension_;
  std::optional<BusName> shell_;
};

}  // namespace

std::unique_ptr<FrontSource> openGnomeFrontSource(SystemMainLoop& loop, const SteadyClock& clock,
                                                  std::shared_ptr<Bus> session,
                                                  DesktopEntries entries,
                                                  std::vector<std::string> dataFolders,
                                                  WorkspaceNoticeHandler notice) {
  return std::make_unique<GnomeFrontSource>(loop, clock, std::move(session), std::move(entries),
                                            std::move(dataFolders), std::move(notice));
}

}  // namespace tessum
