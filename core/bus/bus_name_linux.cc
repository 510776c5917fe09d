#include "core/bus/bus_name.h"

#include <utility>

namespace tessum {
namespace {

constexpr char kPath[] = "/org/freedesktop/DBus";

}  // namespace

BusName::BusName(Bus& bus, std::string name, OwnerHandler onOwner)
    : bus_(bus),
      name_(std::move(name)),
      onOwner_(std::move(onOwner)),
      listener_(
          bus.addListener({.onConnected = [this] { ask(); }, .onLost = [this] { set(""); }})) {
  if (bus.isConnected()) ask();
}

BusName::~BusName() {
  bus_.removeListener(listener_);
}

// Subscribes to changes first, so that none is missed before the reply.
void BusName::ask() {
  changes_ = bus_.subscribe({.sender = kBusItself,
                             .path = kPath,
                             .interface = kBusItself,
                             .member = "NameOwnerChanged",
                             .firstArgument = name_},
                            [this](const BusMessage& signal) {
                              const auto change =
                                  signal.read<std::string, std::string, std::string>();
                              if (change && std::get<0>(*change) == name_) {
                                set(std::get<2>(*change));
                              }
                            });
  question_ = bus_.call(
      {.destination = kBusItself,
       .path = kPath,
       .interface = kBusItself,
       .member = "GetNameOwner",
       .arguments = {name_}},
      [this](const BusMessage& reply) { set(reply.readOne<std::string>().value_or("")); });
}

void BusName::set(const std::string& owner) {
  if (owner == owner_) return;
  owner_ = owner;
  onOwner_(owner);
}

}  // namespace tessum
