#include "core/bus/bus_message.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>

namespace tessum {

bool BusMessage::isError() const {
  return sd_bus_message_is_method_error(message_, nullptr) != 0;
}

bool BusMessage::begin(const std::string& signature) const {
  return !isError() && sd_bus_message_has_signature(message_, signature.c_str()) > 0 &&
         sd_bus_message_rewind(message_, true) >= 0;
}

bool BusMessage::take(bool& value) const {
  int number = 0;
  if (sd_bus_message_read_basic(message_, SD_BUS_TYPE_BOOLEAN, &number) <= 0) return false;
  value = number != 0;
  return true;
}

bool BusMessage::take(std::uint32_t& value) const {
  return sd_bus_message_read_basic(message_, SD_BUS_TYPE_UINT32, &value) > 0;
}

bool BusMessage::take(std::uint64_t& value) const {
  return sd_bus_message_read_basic(message_, SD_BUS_TYPE_UINT64, &value) > 0;
}

bool BusMessage::take(double& value) const {
  return sd_bus_message_read_basic(message_, SD_BUS_TYPE_DOUBLE, &value) > 0;
}

bool BusMessage::take(std::string& value) const {
  return takeText(SD_BUS_TYPE_STRING, value);
}

bool BusMessage::take(BusObjectPath& value) const {
  return takeText(SD_BUS_TYPE_OBJECT_PATH, value.text);
}

// The message closes its own descriptor when it goes.
bool BusMessage::take(Descriptor& value) const {
  int number = -1;
  if (sd_bus_message_read_basic(message_, SD_BUS_TYPE_UNIX_FD, &number) <= 0) return false;
  value = Descriptor(fcntl(number, F_DUPFD_CLOEXEC, 0));
  return value.number() >= 0;
}

bool BusMessage::take(BusDictionary& values) const {
  if (!enter('a', "{sv}")) return false;
  while (!isAtEnd()) {
    std::string name;
    BusValue value;
    if (!enter('e', "sv") || !take(name) || !takeVariant(value) || !leave()) return false;
    values.emplace(std::move(name), std::move(value));
  }
  return leave();
}

bool BusMessage::takeVariant(BusValue& value) const {
  char kind = 0;
  const char* contents = nullptr;
  if (sd_bus_message_peek_type(message_, &kind, &contents) <= 0) return false;
  const std::string_view type = contents;
  const auto takeAs = [&]<typename T>(BusVariant<T> variant) {
    if (!take(variant)) return false;
    value = std::move(variant.value);
    return true;
  };
  if (type == "b") return takeAs(BusVariant<bool>());
  if (type == "d") return takeAs(BusVariant<double>());
  if (type == "s") return takeAs(BusVariant<std::string>());
  return sd_bus_message_skip(message_, "v") >= 0;
}

bool BusMessage::enter(char kind, const std::string& contents) const {
  return sd_bus_message_enter_container(message_, kind, contents.c_str()) > 0;
}

bool BusMessage::leave() const {
  return sd_bus_message_exit_container(message_) >= 0;
}

bool BusMessage::isAtEnd() const {
  return sd_bus_message_at_end(message_, false) != 0;
}

bool BusMessage::takeText(char type, std::string& text) const {
  const char* bytes = nullptr;
  if (sd_bus_message_read_basic(message_, type, static_cast<void*>(&bytes)) <= 0) return false;
  text = bytes;
  return true;
}

}  // namespace tessum
