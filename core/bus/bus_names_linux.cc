#include "core/bus/bus_names.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tessum {
namespace {

using Steady = std::chrono::steady_clock;
using Names = std::vector<std::string>;

constexpr std::chrono::seconds kPatience{2};

struct Close {
  void operator()(sd_bus* bus) const {
    sd_bus_close(bus);
    sd_bus_unref(bus);
  }
};

int onReply(sd_bus_message* message, void* names, sd_bus_error*) {
  auto& answer = *static_cast<std::optional<Names>*>(names);
  answer = BusMessage(message).readOne<Names>().value_or(Names());
  return 0;
}

// One step of the connection, which waits until `deadline` when there is nothing to do. False when
// the connection is lost.
bool step(sd_bus* bus, Steady::time_point deadline) {
  const int processed = sd_bus_process(bus, nullptr);
  if (processed != 0) return processed > 0;
  const auto rest =
      std::chrono::duration_cast<std::chrono::microseconds>(deadline - Steady::now()).count();
  return rest > 0 && sd_bus_wait(bus, static_cast<std::uint64_t>(rest)) > 0;
}

}  // namespace

// The library's waiting call has no time limit while it connects.
std::set<std::string> namesOnBus(Bus::Kind kind) {
  sd_bus* made = nullptr;
  const int opened =
      kind == Bus::Kind::system ? sd_bus_open_system(&made) : sd_bus_open_user(&made);
  const std::unique_ptr<sd_bus, Close> bus(made);
  if (opened < 0) return {};
  std::optional<Names> names;
  if (sd_bus_call_method_async(bus.get(), nullptr, kBusItself, "/org/freedesktop/DBus", kBusItself,
                               "ListNames", onReply, &names, nullptr) < 0) {
    return {};
  }
  const auto deadline = Steady::now() + kPatience;
  while (!names && step(bus.get(), deadline)) {
  }
  if (!names) return {};
  return {names->begin(), names->end()};
}

}  // namespace tessum
