// Reads the values in a message of the bus.
//
// Each D-Bus type corresponds to a C++ type:
//
//   bool                 b        std::vector<T>         aT
//   std::uint32_t        u        std::tuple<T, U...>    (TU...)
//   std::uint64_t        t        BusVariant<T>          v, with a T in it
//   double               d        BusDictionary          a{sv}
//   std::string          s        BusObjectPath          o
//   Descriptor           h

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "core/platform/descriptor.h"

struct sd_bus_message;

namespace tessum {

// The path of an object, such as /org/freedesktop/DBus.
struct BusObjectPath {
  std::string text;

  friend bool operator==(const BusObjectPath&, const BusObjectPath&) = default;
};

// A variant. It is not read unless its type is T.
template <typename T>
struct BusVariant {
  T value{};

  friend bool operator==(const BusVariant&, const BusVariant&) = default;
};

// A value of a BusDictionary; the first alternative stands for values of any other type.
using BusValue = std::variant<std::monostate, bool, double, std::string>;

// Values of any types, each with its name. If a name is given twice, its first value counts.
using BusDictionary = std::map<std::string, BusValue, std::less<>>;

// The value of that name and type; absent when there is none.
template <typename T>
[[nodiscard]] std::optional<T> valueOf(const BusDictionary& dictionary, std::string_view name) {
  const auto found = dictionary.find(name);
  const T* value = found == dictionary.end() ? nullptr : std::get_if<T>(&found->second);
  return value == nullptr ? std::nullopt : std::optional<T>(*value);
}

// A message that has come in. It is valid while the handler that gets it runs. Main thread only.
class BusMessage {
 public:
  // The caller keeps ownership of `message`.
  explicit BusMessage(sd_bus_message* message) : message_(message) {}

  // Whether it reports that a call has failed.
  [[nodiscard]] bool isError() const;

  // All values of the message. Absent when their types differ from these, or the message is an
  // error. May be called any number of times.
  template <typename... Values>
  [[nodiscard]] std::optional<std::tuple<Values...>> read() const {
    std::tuple<Values...> values;
    if (!begin((std::string() + ... + signatureOf(Type<Values>())))) return std::nullopt;
    if (!takeEach(values)) return std::nullopt;
    return values;
  }

  // As above, for a message with one value.
  template <typename Value>
  [[nodiscard]] std::optional<Value> readOne() const {
    auto values = read<Value>();
    if (!values) return std::nullopt;
    return std::get<0>(std::move(*values));
  }

 private:
  template <typename T>
  struct Type {};

  static std::string signatureOf(Type<bool>) { return "b"; }
  static std::string signatureOf(Type<std::uint32_t>) { return "u"; }
  static std::string signatureOf(Type<std::uint64_t>) { return "t"; }
  static std::string signatureOf(Type<double>) { return "d"; }
  static std::string signatureOf(Type<std::string>) { return "s"; }
  static std::string signatureOf(Type<BusObjectPath>) { return "o"; }
  static std::string signatureOf(Type<Descriptor>) { return "h"; }
  static std::string signatureOf(Type<BusDictionary>) { return "a{sv}"; }
  template <typename T>
  static std::string signatureOf(Type<BusVariant<T>>) {
    return "v";
  }
  template <typename T>
  static std::string signatureOf(Type<std::vector<T>>) {
    return "a" + signatureOf(Type<T>());
  }
  template <typename... Ts>
  static std::string signatureOf(Type<std::tuple<Ts...>>) {
    return "(" + (signatureOf(Type<Ts>()) + ...) + ")";
  }

  // Goes to the first value, if the message has this signature.
  [[nodiscard]] bool begin(const std::string& signature) const;

  // Each reads the next value; false when it does not have that type.
  [[nodiscard]] bool take(bool& value) const;
  [[nodiscard]] bool take(std::uint32_t& value) const;
  [[nodiscard]] bool take(std::uint64_t& value) const;
  [[nodiscard]] bool take(double& value) const;
  [[nodiscard]] bool take(std::string& value) const;
  [[nodiscard]] bool take(BusObjectPath& value) const;
  [[nodiscard]] bool take(Descriptor& value) const;
  [[nodiscard]] bool take(BusDictionary& values) const;
  [[nodiscard]] bool takeVariant(BusValue& value) const;

  template <typename T>
  [[nodiscard]] bool take(BusVariant<T>& value) const {
    return enter('v', signatureOf(Type<T>())) && take(value.value) && leave();
  }

  template <typename T>
  [[nodiscard]] bool take(std::vector<T>& values) const {
    if (!enter('a', signatureOf(Type<T>()))) return false;
    while (!isAtEnd()) {
      T value{};
      if (!take(value)) return false;
      values.push_back(std::move(value));
    }
    return leave();
  }

  template <typename... Ts>
  [[nodiscard]] bool take(std::tuple<Ts...>& values) const {
    return enter('r', (signatureOf(Type<Ts>()) + ...)) && takeEach(values) && leave();
  }

  template <typename... Ts>
  [[nodiscard]] bool takeEach(std::tuple<Ts...>& values) const {
    return std::apply([&](auto&... value) { return (take(value) && ...); }, values);
  }

  // Enters a container of that kind, and leaves it.
  [[nodiscard]] bool enter(char kind, const std::string& contents) const;
  [[nodiscard]] bool leave() const;

  // Whether the container has no more values or cannot be read further.
  [[nodiscard]] bool isAtEnd() const;

  [[nodiscard]] bool takeText(char type, std::string& text) const;

  sd_bus_message* message_;
};

}  // namespace tessum
