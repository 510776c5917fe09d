#include "core/json/value.h"

#include "core/json/number.h"

namespace tessum::json {

Value Value::real(double value) {
  return Number{numberText(value)};
}

}  // namespace tessum::json
