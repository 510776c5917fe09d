#include "core/presence/linux/linux_presence.h"

#include <set>
#include <utility>

#include "core/presence/linux/awake_reasons.h"
#include "core/presence/linux/gnome_inhibitors.h"
#include "core/presence/linux/idle_inhibitors.h"
#include "core/presence/linux/kde_inhibitions.h"
#include "core/presence/linux/lock_state.h"
#include "core/presence/linux/login_session.h"
#include "core/presence/linux/power_transitions.h"
#include "core/presence/linux/screen_saver.h"
#include "core/presence/system_presence.h"

namespace tessum {

// All services, and the state that they report together.
class LinuxPresence::Watch {
 public:
  Watch(SystemMainLoop& loop, const SteadyClock& clock, Bus::Timing timing,
        PresenceHandlers handlers)
      : clock_(clock),
        handlers_(std::move(handlers)),
        system_(loop, Bus::Kind::system, timing),
        session_(loop, Bus::Kind::session, timing),
        lock_(loop, [this](bool isLocked) { tell(handlers_.onLock, isLocked, clock_.now()); }),
        awake_([this](const auto& reasons) { tell(handlers_.onKeptAwake, reasons, clock_.now()); }),
        loginSession_(system_, loginHandlers()),
        power_(system_, powerHandlers()),
        idleInhibitors_(system_, listing("logind")),
        gnomeInhibitors_(session_, listing("gnome")),
        kdeInhibitions_(session_, listing("kde")) {
    for (const ScreenSaverKind& kind : screenSaverKinds()) {
      screenSavers_.push_back(std::make_unique<ScreenSaver>(
          session_, kind, [this, &kind](bool isActive) { lock_.set(kind.name, isActive); }));
    }
  }

 private:
  // Why the user cannot be at the computer.
  enum class Absence { asleep, shuttingDown, loggedOut };

  template <typename Handler, typename... Arguments>
  static void tell(const Handler& handler, Arguments&&... arguments) {
    if (handler) handler(std::forward<Arguments>(arguments)...);
  }

  AwakeReasonsHandler listing(std::string source) {
    return [this, source = std::move(source)](std::vector<AwakeReason> reasons) {
      awake_.set(source, std::move(reasons));
    };
  }

  LoginSession::Handlers loginHandlers() {
    return {.onLocked = [this](bool isLocked) { lock_.set("logind", isLocked); },
            .onLockRequest = [this] { lock_.requestLock(); },
            .onUnlockRequest = [this] { lock_.requestUnlock(); },
            .onOver =
                [this](bool isOver) {
                  isOver ? endSession(Absence::loggedOut, nullptr) : end(Absence::loggedOut);
                }};
  }

  PowerTransitions::Handlers powerHandlers() {
    return {.onSleep =
                [this](PresenceHandlers::Delay delay) {
                  absences_.insert(Absence::asleep);
                  tell(handlers_.onSleep, clock_.now(), std::move(delay));
                },
            .onWake = [this] { end(Absence::asleep); },
            .onShutdown =
                [this](PresenceHandlers::Delay delay) {
                  endSession(Absence::shuttingDown, std::move(delay));
                },
            .onShutdownGivenUp = [this] { end(Absence::shuttingDown); }};
  }

  // A shutdown also ends the login session; that is reported only once.
  void endSession(Absence absence, PresenceHandlers::Delay delay) {
    const bool hasEnded =
        absences_.count(Absence::shuttingDown) + absences_.count(Absence::loggedOut) > 0;
    absences_.insert(absence);
    if (!hasEnded) tell(handlers_.onSessionEnd, clock_.now(), std::move(delay));
  }

  void end(Absence absence) {
    if (absences_.erase(absence) > 0 && absences_.empty()) tell(handlers_.onWake, clock_.now());
  }

  const SteadyClock& clock_;
  const PresenceHandlers handlers_;
  std::set<Absence> absences_;
  Bus system_;
  Bus session_;
  LockState lock_;
  AwakeReasons awake_;
  LoginSession loginSession_;
  PowerTransitions power_;
  IdleInhibitors idleInhibitors_;
  GnomeInhibitors gnomeInhibitors_;
  KdeInhibitions kdeInhibitions_;
  std::vector<std::unique_ptr<ScreenSaver>> screenSavers_;
};

LinuxPresence::LinuxPresence(SystemMainLoop& loop, const SteadyClock& clock, Bus::Timing timing)
    : loop_(loop), clock_(clock), timing_(timing) {}

LinuxPresence::~LinuxPresence() = default;

void LinuxPresence::watch(PresenceHandlers handlers) {
  watch_ = nullptr;
  watch_ = std::make_unique<Watch>(loop_, clock_, timing_, std::move(handlers));
}

std::unique_ptr<PresenceSource> openSystemPresence(SystemMainLoop& loop, const SteadyClock& clock) {
  return std::make_unique<LinuxPresence>(loop, clock);
}

}  // namespace tessum
