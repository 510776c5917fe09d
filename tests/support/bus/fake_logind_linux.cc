#include "tests/support/bus/fake_logind_linux.h"

#include <poll.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace tessum {
namespace {

constexpr char kPath[] = "/org/freedesktop/login1";
constexpr char kManager[] = "org.freedesktop.login1.Manager";
constexpr char kSessionInterface[] = "org.freedesktop.login1.Session";

}  // namespace

FakeLogind::FakeLogind(SystemMainLoop& loop, const std::string& address) : peer_(loop, address) {
  peer_.setProperty("/org/freedesktop/login1/session/auto", kSessionInterface, "Id",
                    std::string(kSession));
  peer_.setProperty(kSessionPath, kSessionInterface, "LockedHint", false);
  peer_.setProperty(kSessionPath, kSessionInterface, "State", std::string("active"));
  peer_.setProperty(kPath, kManager, "PreparingForSleep", false);
  peer_.setProperty(kPath, kManager, "PreparingForShutdown", false);
  peer_.answer(kPath, kManager, "GetSession", [this](sd_bus_message* call) {
    const char* id = "";
    sd_bus_message_read(call, "s", &id);
    if (id == std::string(kSession)) {
      sd_bus_reply_method_return(call, "o", kSessionPath);
      hasToldSession_ = true;
    } else {
      sd_bus_reply_method_errorf(call, "org.freedesktop.login1.NoSuchSession", "no such session");
    }
  });
  peer_.answer(kPath, kManager, "Inhibit", [this](sd_bus_message* call) { answerInhibit(call); });
  peer_.answer(kPath, kManager, "ListInhibitors",
               [this](sd_bus_message* call) { answerList(call); });
  takeName();
}

void FakeLogind::changeSession(const std::string& property, BusArgument value) {
  peer_.changeProperty(kSessionPath, kSessionInterface, property, std::move(value));
}

void FakeLogind::setState(const std::string& state) {
  peer_.setProperty(kSessionPath, kSessionInterface, "State", state);
  changeSession("Active", state == "active");
}

void FakeLogind::changeManager(const std::string& property, const std::string& value) {
  peer_.changeProperty(kPath, kManager, property, value);
}

void FakeLogind::prepare(const std::string& member, bool isBeginning) {
  // Whoever asks just now gets the same answer as the signal.
  const std::string property = "Preparing" + member.substr(std::string("Prepare").size());
  peer_.setProperty(kPath, kManager, property, isBeginning);
  peer_.emit(kPath, kManager, member, "b", static_cast<int>(isBeginning));
}

int FakeLogind::heldInhibitors() const {
  int held = 0;
  for (const Descriptor& readEnd : readEnds_) {
    pollfd waiting{readEnd.number(), POLLIN, 0};
    if (poll(&waiting, 1, 0) == 0) ++held;
  }
  return held;
}

void FakeLogind::answerInhibit(sd_bus_message* call) {
  const char* what = "";
  const char* who = "";
  const char* why = "";
  const char* mode = "";
  sd_bus_message_read(call, "ssss", &what, &who, &why, &mode);
  requests_.push_back(std::string(what) + ", " + who + ", " + why + ", " + mode);
  if (!permitsInhibitors) {
    sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "not permitted");
    return;
  }
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  readEnds_.emplace_back(ends[0]);
  const Descriptor writeEnd(ends[1]);
  sd_bus_reply_method_return(call, "h", writeEnd.number());
}

void FakeLogind::answerList(sd_bus_message* call) const {
  sd_bus_message* reply = nullptr;
  sd_bus_message_new_method_return(call, &reply);
  sd_bus_message_open_container(reply, 'a', "(ssssuu)");
  for (const Inhibitor& inhibitor : inhibitors) {
    sd_bus_message_append(reply, "(ssssuu)", inhibitor.what.c_str(), inhibitor.who.c_str(),
                          inhibitor.why.c_str(), inhibitor.mode.c_str(), inhibitor.user,
                          static_cast<std::uint32_t>(getpid()));
  }
  sd_bus_message_close_container(reply);
  sd_bus_send(nullptr, reply, nullptr);
  sd_bus_message_unref(reply);
}

}  // namespace tessum
