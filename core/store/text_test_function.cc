#include "core/store/text_test_function.h"

#include <sqlite3.h>

namespace tessum {
namespace {

constexpr char kName[] = "is_meant";

std::optional<std::string_view> textOf(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (bytes == nullptr) return std::nullopt;
  return std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void answer(sqlite3_context* context, int, sqlite3_value** values) {
  const auto& function = *static_cast<const TextTestFunction*>(sqlite3_user_data(context));
  sqlite3_result_int(context, function.isMeant(textOf(values[0])) ? 1 : 0);
}

}  // namespace

TextTestFunction::TextTestFunction(sqlite3* db, const TextTest& test) : db_(db), test_(test) {
  const int result =
      sqlite3_create_function(db, kName, 1, SQLITE_UTF8, this, answer, nullptr, nullptr);
  if (result != SQLITE_OK) throw DatabaseError::executionFailed(result, sqlite3_errmsg(db));
}

TextTestFunction::~TextTestFunction() {
  sqlite3_create_function(db_, kName, 1, SQLITE_UTF8, nullptr, nullptr, nullptr, nullptr);
}

bool TextTestFunction::isMeant(std::optional<std::string_view> text) const {
  return !test_ || (text && test_(*text));
}

}  // namespace tessum
