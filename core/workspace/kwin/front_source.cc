// Windows in front on KWin, as a script in it reports them.
//
// KWin reads the script from a file and runs it until it is unloaded by its name. Several programs
// may each have one, such as the recorder and the doctor, so a script is named after its process,
// and so is its file. A program that was killed leaves both behind; the next one removes them.

#include "core/workspace/kwin/front_source.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "core/bus/bus_name.h"
#include "core/platform/descriptor.h"
#include "core/workspace/kwin/script.h"
#include "core/workspace/linux/environment.h"
#include "core/workspace/linux/focused_window.h"
#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/window_identifier.h"

namespace tessum {
namespace {

constexpr char kKWin[] = "org.kde.KWin";
constexpr char kScriptingPath[] = "/Scripting";
constexpr char kScripting[] = "org.kde.kwin.Scripting";
constexpr char kScriptName[] = "com.tessum.FocusedWindow.";  // and the process id

std::filesystem::path scriptFolder() {
  return environment("XDG_RUNTIME_DIR", "/tmp");
}

// The names of scripts whose programs are gone.
std::vector<std::string> abandonedScripts() {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& file : std::filesystem::directory_iterator(scriptFolder(), error)) {
    const std::string name = file.path().filename();
    if (!name.starts_with(kScriptName)) continue;
    const auto process = std::atoi(name.c_str() + std::size(kScriptName) - 1);
    if (process > 0 && kill(process, 0) != 0 && errno == ESRCH) names.push_back(name);
  }
  return names;
}

// A file for the user alone, which is removed with the object.
class ScriptFile {
 public:
  ScriptFile(const std::string& name, const std::string& text) : path_(scriptFolder() / name) {
    unlink(path_.c_str());  // of an earlier process with our id
    const Descriptor file(
        open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
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
    static_cast<void>(call("unloadScript", {name_}, [](const BusMessage&) {}));
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
      notice_({"The session's message bus has gone away; recording continues when it is back."});
    }
  }

  void load() {
    calls_ = session_->offer({.caller = owner_,
                              .path = kKWinScriptPath,
                              .interface = kKWinScriptInterface,
                              .member = kKWinScriptMember},
                             [this](const BusMessage& call) { show(call); });
    for (const std::string& name : abandonedScripts()) {
      static_cast<void>(call("unloadScript", {name}, [](const BusMessage&) {}));
      unlink((scriptFolder() / name).c_str());
    }
    script_.reset();
    script_.emplace(name_, kwinScript(session_->uniqueName()));
    if (!script_->isWritten()) return fail();
    // KWin refuses to load a script under a name that was just unloaded until it has returned to
    // its main loop, which it has once the answer is here.
    unloading_ = call("unloadScript", {name_}, [this](const BusMessage&) { loadUnloaded(); });
  }

  void loadUnloaded() {
    loading_ = call("loadScript", {script_->path(), name_}, [this](const BusMessage& reply) {
      if (reply.isError()) return fail();
      static_cast<void>(call("start", {}, [](const BusMessage&) {}));
    });
  }

  void fail() {
    notice_({.text = "KWin does not run the script that reports which window is in front.",
             .remedy = "Let KWin show its windows to Tessum, as docs/PLATFORMS.md says."});
  }

  [[nodiscard]] BusSlot call(const char* method, std::vector<BusArgument> arguments,
                             Bus::MessageHandler onReply) {
    return session_->call({owner_, kScriptingPath, kScripting, method, std::move(arguments)},
                          std::move(onReply));
  }

  void show(const BusMessage& message) {
    showFocusedWindow(message, identifier_, clock_.now(), tracker_);
  }

  const SteadyClock& clock_;
  const std::shared_ptr<Bus> session_;
  WindowIdentifier identifier_;
  const WorkspaceNoticeHandler notice_;
  Handler handler_;
  FrontTracker tracker_;
  const std::string name_ = kScriptName + std::to_string(getpid());  // of the script
  std::string owner_;                                                // of KWin's name
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
