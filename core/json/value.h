// A JSON value in memory, for documents that are edited or read by name.

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tessum::json {

// A number as its source text, which is always of JSON's grammar.
struct Number {
  std::string text;

  friend bool operator==(const Number&, const Number&) = default;
};

// A value; copies are deep. The members of an object are ordered by the code points of their keys;
// a key that is read twice keeps its last value. One thread at a time.
class Value {
 public:
  using Array = std::vector<Value>;
  using Object = std::map<std::string, Value, std::less<>>;

  Value() = default;  // null
  Value(bool value) : data_(value) {}
  Value(Number number) : data_(std::move(number)) {}
  Value(int value) : Value(std::int64_t{value}) {}
  Value(std::int64_t value) : data_(Number{std::to_string(value)}) {}
  Value(std::string text) : data_(std::move(text)) {}
  Value(std::string_view text) : data_(std::string(text)) {}
  Value(const char* text) : data_(std::string(text)) {}
  Value(Array elements) : data_(std::move(elements)) {}
  Value(Object members) : data_(std::move(members)) {}

  // A finite number; use it for measures, never for counts.
  [[nodiscard]] static Value real(double value);

  // Other types would convert to one of the above unintentionally.
  template <typename Other>
  Value(Other) = delete;

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::nullptr_t>(data_); }

  // The held value when it is of that kind, else null. Owned by this value.
  [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&data_); }
  [[nodiscard]] const Number* number() const { return std::get_if<Number>(&data_); }
  [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&data_); }
  [[nodiscard]] const Array* array() const { return std::get_if<Array>(&data_); }
  [[nodiscard]] const Object* object() const { return std::get_if<Object>(&data_); }

  friend bool operator==(const Value&, const Value&) = default;

 private:
  std::variant<std::nullptr_t, bool, Number, std::string, Array, Object> data_ = nullptr;
};

}  // namespace tessum::json
