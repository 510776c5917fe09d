#include "tests/support/bus/bus_linux.h"

#include <utility>
#include <variant>

namespace tessum {
namespace {

constexpr char kProperties[] = "org.freedesktop.DBus.Properties";

// No part of a name contains a space.
std::string key(const std::string& path, const std::string& interface, const std::string& member) {
  return path + " " + interface + " " + member;
}

std::string textOf(const char* text) {
  return text != nullptr ? text : "";
}

int appendVariant(sd_bus_message* message, const BusArgument& value) {
  if (const auto* flag = std::get_if<bool>(&value)) {
    return sd_bus_message_append(message, "v", "b", static_cast<int>(*flag));
  }
  if (const auto* number = std::get_if<std::uint32_t>(&value)) {
    return sd_bus_message_append(message, "v", "u", *number);
  }
  return sd_bus_message_append(message, "v", "s", std::get<std::string>(value).c_str());
}

}  // namespace

bool runUntil(SystemMainLoop& loop, const std::function<bool()>& isDone) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  bool hasHappened = false;
  const auto timer = loop.startTimer(0.001, [&] {
    hasHappened = isDone();
    if (hasHappened || std::chrono::steady_clock::now() > deadline) loop.quit();
  });
  loop.run();
  loop.invalidateTimer(timer);
  return hasHappened;
}

PrivateBus::PrivateBus(const std::string& limits) : address_("unix:path=" + folder_.file("bus")) {
  writeFile(folder_.file("configuration"),
            "<busconfig><listen>" + address_ + "</listen><servicedir>" + folder_.path() +
                "</servicedir><policy context='default'><allow send_destination='*' "
                "eavesdrop='true'/><allow eavesdrop='true'/><allow own='*'/></policy>" +
                limits + "</busconfig>");
}

void PrivateBus::start() {
  daemon_.reset();
  daemon_ = std::make_unique<ChildProcess>(
      "dbus-daemon",
      ChildProcess::Options{.arguments = {"--config-file=" + folder_.file("configuration"),
                                          "--nofork", "--nopidfile", "--print-address"}});
  if (!daemon_->readLine()) throw std::runtime_error("no bus: " + daemon_->errors());
}

BusPeer::BusPeer(SystemMainLoop& loop, const std::string& address) : loop_(loop) {
  expect(sd_bus_new(&bus_));
  expect(sd_bus_set_address(bus_, address.c_str()));
  expect(sd_bus_set_bus_client(bus_, 1));
  expect(sd_bus_start(bus_));
  expect(sd_bus_add_filter(bus_, nullptr, onMessage, this));
  // Messages that arrive during one of its own calls are queued, and the descriptor does not show
  // them.
  timer_ = loop.startTimer(0.001, [this] {
    while (sd_bus_process(bus_, nullptr) > 0) {
    }
  });
}

BusPeer::~BusPeer() {
  loop_.invalidateTimer(timer_);
  sd_bus_close_unref(bus_);
}

void BusPeer::takeName(const std::string& name) {
  expect(sd_bus_request_name(bus_, name.c_str(), 0));
}

void BusPeer::giveUpName(const std::string& name) {
  expect(sd_bus_release_name(bus_, name.c_str()));
}

std::string BusPeer::uniqueName() const {
  const char* name = nullptr;
  expect(sd_bus_get_unique_name(bus_, &name));
  return name;
}

void BusPeer::answer(const std::string& path, const std::string& interface,
                     const std::string& member, Answer answer) {
  answers_[key(path, interface, member)] = std::move(answer);
}

void BusPeer::setProperty(const std::string& path, const std::string& interface,
                          const std::string& property, BusArgument value) {
  properties_[key(path, interface, property)] = std::move(value);
  answer(path, kProperties, "Get", [this](sd_bus_message* call) { answerProperty(call); });
}

void BusPeer::changeProperty(const std::string& path, const std::string& interface,
                             const std::string& property, BusArgument value) {
  setProperty(path, interface, property, value);
  sd_bus_message* signal = nullptr;
  expect(sd_bus_message_new_signal(bus_, &signal, path.c_str(), kProperties, "PropertiesChanged"));
  expect(sd_bus_message_append(signal, "s", interface.c_str()));
  expect(sd_bus_message_open_container(signal, 'a', "{sv}"));
  expect(sd_bus_message_open_container(signal, 'e', "sv"));
  expect(sd_bus_message_append(signal, "s", property.c_str()));
  expect(appendVariant(signal, value));
  expect(sd_bus_message_close_container(signal));
  expect(sd_bus_message_close_container(signal));
  expect(sd_bus_message_append(signal, "as", 0));
  expect(sd_bus_send(bus_, signal, nullptr));
  sd_bus_message_unref(signal);
}

int BusPeer::onMessage(sd_bus_message* message, void* self, sd_bus_error*) {
  if (!sd_bus_message_is_method_call(message, nullptr, nullptr)) return 0;
  return static_cast<BusPeer*>(self)->answer(message) ? 1 : 0;
}

bool BusPeer::answer(sd_bus_message* call) {
  const std::string path = textOf(sd_bus_message_get_path(call));
  const std::string member = textOf(sd_bus_message_get_member(call));
  calls.push_back(member + " " + path);
  const auto found = answers_.find(key(path, textOf(sd_bus_message_get_interface(call)), member));
  if (found == answers_.end()) return false;
  found->second(call);
  return true;
}

void BusPeer::answerProperty(sd_bus_message* call) {
  const char* interface = nullptr;
  const char* property = nullptr;
  expect(sd_bus_message_read(call, "ss", &interface, &property));
  const auto found =
      properties_.find(key(textOf(sd_bus_message_get_path(call)), interface, property));
  if (found == properties_.end()) {
    expect(sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_PROPERTY, "no such property"));
    return;
  }
  sd_bus_message* reply = nullptr;
  expect(sd_bus_message_new_method_return(call, &reply));
  expect(appendVariant(reply, found->second));
  expect(sd_bus_send(bus_, reply, nullptr));
  sd_bus_message_unref(reply);
}

}  // namespace tessum
