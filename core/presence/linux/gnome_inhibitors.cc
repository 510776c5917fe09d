// The session manager lists its inhibitors as objects; we query each for its flags, its owner and
// its reason.

#include "core/presence/linux/gnome_inhibitors.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace tessum {
namespace {

constexpr char kManagerName[] = "org.gnome.SessionManager";
constexpr char kManagerPath[] = "/org/gnome/SessionManager";
constexpr char kManager[] = "org.gnome.SessionManager";
constexpr char kInhibitor[] = "org.gnome.SessionManager.Inhibitor";

constexpr std::uint32_t kAgainstIdle = 8;  // one of the flags

}  // namespace

struct GnomeInhibitors::Inhibitor {
  std::uint32_t flags = 0;
  AwakeReason reason;
  int unanswered = 3;
  BusSlot questions[3];
};

GnomeInhibitors::GnomeInhibitors(Bus& session, AwakeReasonsHandler onReasons)
    : session_(session),
      onReasons_(std::move(onReasons)),
      name_(session, kManagerName, [this](const std::string& owner) { start(owner); }) {}

GnomeInhibitors::~GnomeInhibitors() = default;

void GnomeInhibitors::start(const std::string& owner) {
  owner_ = owner;
  added_ = nullptr;
  removed_ = nullptr;
  question_ = nullptr;
  inhibitors_.clear();
  if (owner.empty()) return onReasons_({});
  BusSignal signal{.sender = owner, .path = kManagerPath, .interface = kManager};
  signal.member = "InhibitorAdded";
  added_ = session_.subscribe(signal, [this](const BusMessage&) { ask(); });
  signal.member = "InhibitorRemoved";
  removed_ = session_.subscribe(signal, [this](const BusMessage&) { ask(); });
  ask();
}

void GnomeInhibitors::ask() {
  inhibitors_.clear();
  question_ = session_.call({owner_, kManagerPath, kManager, "GetInhibitors"},
                            [this](const BusMessage& reply) {
                              const auto paths = reply.readOne<std::vector<BusObjectPath>>();
                              if (paths) askAbout(*paths);
                            });
}

void GnomeInhibitors::askAbout(const std::vector<BusObjectPath>& paths) {
  inhibitors_ = std::vector<Inhibitor>(std::min(paths.size(), AwakeReasons::kMost));
  for (std::size_t i = 0; i < inhibitors_.size(); ++i) ask(inhibitors_[i], paths[i].text);
  tellOnceKnown();
}

// An inhibitor that disappears meanwhile answers with errors, and does not count.
void GnomeInhibitors::ask(Inhibitor& inhibitor, const std::string& path) {
  const auto call = [&](const char* method, auto take) {
    return session_.call({owner_, path, kInhibitor, method},
                         [this, &inhibitor, take](const BusMessage& reply) {
                           take(reply);
                           --inhibitor.unanswered;
                           tellOnceKnown();
                         });
  };
  inhibitor.questions[0] = call("GetFlags", [&inhibitor](const BusMessage& reply) {
    inhibitor.flags = reply.readOne<std::uint32_t>().value_or(0);
  });
  inhibitor.questions[1] = call("GetAppId", [&inhibitor](const BusMessage& reply) {
    inhibitor.reason.who = reply.readOne<std::string>().value_or("");
  });
  inhibitor.questions[2] = call("GetReason", [&inhibitor](const BusMessage& reply) {
    inhibitor.reason.why = reply.readOne<std::string>().value_or("");
  });
}

void GnomeInhibitors::tellOnceKnown() {
  std::vector<AwakeReason> reasons;
  for (const Inhibitor& inhibitor : inhibitors_) {
    if (inhibitor.unanswered > 0) return;
    if ((inhibitor.flags & kAgainstIdle) != 0) reasons.push_back(inhibitor.reason);
  }
  onReasons_(std::move(reasons));
}

}  // namespace tessum
