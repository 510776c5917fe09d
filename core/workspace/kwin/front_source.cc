// Windows in front on KWin, as a script in it tells them.
//
// KWin reads the script from a file and runs it until it is unloaded by its name. A script that a
// recorder has left behind, as after a crash, calls a program that is gone; it is unloaded first.

#include "core/workspace/kwin/front_source.h"

#include <stdlib.h>
#include <unistd.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/bus/bus_name.h"
#include "core/platform/descriptor.h"
#include "core/workspace/kwin/script.h"
#include "core/workspace/linux/environment.h"
#include "core/workspace/linux/focused_window.h"
#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/window_identifier.h"
#include "core/workspace/title.h"

namespace tessum {
namespace {

constexpr char kKWin[] = "org.kde.KWin";
constexpr char kPath[] = "/Scripting";
constexpr char kScripting[] = "org.kde.kwin.Scripting";
constexpr char kName[] = "com.tessum.FocusedWindow";

// A file for the user alone, which goes with the object.
class ScriptFile {
 public:
  explicit ScriptFile(const std::string& text)
      : path_(environment("XDG_RUNTIME_DIR", "/tmp") + "/tessum-kwin-XXXXXX") {
    const Descriptor file(mkstemp(path_.data()));
    isWritten_ = file.number() >= 0 && write(file.number(), text.data(), text.size()) ==
                                           static_cast<ssize_t>(text.size());
  }
  ~ScriptFile() { unlink(path_.c_str()); }
  ScriptFile(const ScriptFile&) = delete;
  ScriptFile& operator=(const ScriptFile&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool isWritten() const { return isWritten_; }

 private:
  std::string path_;
  bool isWritten_ = false;
};

class KWinFrontSource final : public FrontSource {
 public:
  KWinFrontSource(SystemMainLoop& loop, const SteadyClock& clock, std::shared_ptr<Bus> session,
                  DesktopEntries entries, WorkspaceNoticeHandler notice)
      : clock_(clock),
        session_(std::move(session)),
        identifier_(std::move(entries)),
        notice_(std::move(notice)),
        tracker_(loop, [this](const auto& front, Moment since) { handler_(front, since); }) {}

  ~KWinFrontSource() override {
    if (owner_.empty()) return;
    static_cast<void>(call("unloadScript", {std::string(kName)}, [](const BusMessage&) {}));
  }

  void start(Handler handler) override {
    handler_ = std::move(handler);
    tracker_.show(std::nullopt, clock_.now());
    kwin_.emplace(*session_, kKWin, [this](const std::string& owner) { follow(owner); });
  }

  [[nodiscard]] std::string way() const override { return "a script in KWin"; }

 private:
  void follow(const std::string& owner) {
    const bool hadOwner = !owner_.empty();
    owner_ = owner;
    calls_ = nullptr;
    unloading_ = nullptr;
    loading_ = nullptr;
    if (!owner.empty()) return load();
    if (!hadOwner) return;
    if (session_->isConnected()) {
      tracker_.clear(clock_.now());
      notice_({"KWin has ended; nothing more can be recorded.", true});
    } else {
      tracker_.show(std::nullopt, clock_.now());
      notice_({"The session's message bus has gone away; recording goes on when it is back."});
    }
  }

  void load() {
    calls_ = session_->offer({.caller = owner_,
                              .path = kKWinScriptPath,
                              .interface = kKWinScriptInterface,
                              .member = kKWinScriptMember},
                             [this](const BusMessage& call) { show(call); });
    script_.emplace(kwinScript(session_->uniqueName()));
    if (!script_->isWritten()) return fail();
    // KWin refuses to load a script whose name has just been unloaded until it has come back to its
    // main loop, as it has when the answer is here.
    unloading_ =
        call("unloadScript", {std::string(kName)}, [this](const BusMessage&) { loadUnloaded(); });
  }

  void loadUnloaded() {
    loading_ =
        call("loadScript", {script_->path(), std::string(kName)}, [this](const BusMessage& reply) {
          if (reply.isError()) return fail();
          static_cast<void>(call("start", {}, [](const BusMessage&) {}));
        });
  }

  void fail() {
    notice_({.text = "KWin does not run the script that tells which window is in front.",
             .remedy = "Let KWin show its windows to Tessum, as docs/PLATFORMS.md says."});
  }

  [[nodiscard]] BusSlot call(const char* method, std::vector<BusArgument> arguments,
                             Bus::MessageHandler onReply) {
    return session_->call({owner_, kPath, kScripting, method, std::move(arguments)},
                          std::move(onReply));
  }

  void show(const BusMessage& message) {
    auto focused = readFocusedWindow(message);
    if (!focused) return;
    if (focused->isNone()) return tracker_.show(std::nullopt, clock_.now());
    FrontWindow window = identifier_.identify(describe(*focused, identifier_.hostName()));
    window.title = titleFrom(std::move(focused->title));
    tracker_.show(window, clock_.now());
  }

  const SteadyClock& clock_;
  const std::shared_ptr<Bus> session_;
  WindowIdentifier identifier_;
  const WorkspaceNoticeHandler notice_;
  Handler handler_;
  FrontTracker tracker_;
  std::string owner_;  // of KWin's name
  std::optional<ScriptFile> script_;
  BusSlot calls_;
  BusSlot unloading_;
  BusSlot loading_;
  std::optional<BusName> kwin_;
};

}  // namespace

std::unique_ptr<FrontSource> openKWinFrontSource(SystemMainLoop& loop, const SteadyClock& clock,
                                                 std::shared_ptr<Bus> session,
                                                 DesktopEntries entries,
                                                 WorkspaceNoticeHandler notice) {
  return std::make_unique<KWinFrontSource>(loop, clock, std::move(session), std::move(entries),
                                           std::move(notice));
}

}  // namespace tessum
