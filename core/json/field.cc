#include "core/json/field.h"

#include <cmath>
#include <cstdlib>
#include <utility>

#include "core/json/number.h"
#include "core/json/reader.h"

namespace tessum::json {

Field Field::required(std::string_view key) const {
  const Value::Object* object = value_->object();
  if (object == nullptr) fail("an object");
  const std::string path = path_.empty() ? std::string(key) : path_ + "." + std::string(key);
  const auto member = object->find(key);
  if (member == object->end()) throw DecodingError("missing member " + path);
  return {member->second, path};
}

std::optional<Field> Field::optional(std::string_view key) const {
  const Value::Object* object = value_->object();
  if (object == nullptr) fail("an object");
  const auto member = object->find(key);
  if (member == object->end() || member->second.isNull()) return std::nullopt;
  return required(key);
}

std::vector<Field> Field::elements() const {
  const Value::Array* array = value_->array();
  if (array == nullptr) fail("an array");
  std::vector<Field> fields;
  fields.reserve(array->size());
  for (const Value& element : *array) {
    fields.push_back(Field(element, path_ + "[" + std::to_string(fields.size()) + "]"));
  }
  return fields;
}

std::string Field::text() const {
  const std::string* text = value_->text();
  if (text == nullptr) fail("text");
  return *text;
}

bool Field::boolean() const {
  const bool* boolean = value_->boolean();
  if (boolean == nullptr) fail("true or false");
  return *boolean;
}

std::int64_t Field::integer() const {
  const Number* number = value_->number();
  const auto integer = number == nullptr ? std::nullopt : integralValue(number->text);
  if (!integer) fail("a 64-bit integer");
  return *integer;
}

double Field::real() const {
  const Number* number = value_->number();
  const double real = number == nullptr ? HUGE_VAL : std::strtod(number->text.c_str(), nullptr);
  if (!std::isfinite(real)) fail("a number");
  return real;
}

void Field::fail(std::string_view what) const {
  const std::string path = path_.empty() ? "the top level" : path_;
  throw DecodingError("expected " + std::string(what) + " at " + path);
}

}  // namespace tessum::json
