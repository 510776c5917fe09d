#include "core/store/session_test_function.h"

#include <sqlite3.h>

#include "core/base/text.h"

namespace tessum {
namespace {

constexpr char kName[] = "is_meant";
constexpr int kArguments = 3;

std::optional<std::string> textOf(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (bytes == nullptr) return std::nullopt;
  return validUtf8({bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))});
}

void answer(sqlite3_context* context, int, sqlite3_value** values) {
  const auto& function = *static_cast<const SessionTestFunction*>(sqlite3_user_data(context));
  const Activity session{.id = {},
                         .appName = textOf(values[0]).value_or(""),
                         .bundleID = textOf(values[1]),
                         .title = textOf(values[2]),
                         .startTime = {},
                         .endTime = {}};
  sqlite3_result_int(context, function.isMeant(session) ? 1 : 0);
}

}  // namespace

SessionTestFunction::SessionTestFunction(sqlite3* db, const SessionTest& test)
    : db_(db), test_(test) {
  const int result =
      sqlite3_create_function(db, kName, kArguments, SQLITE_UTF8, this, answer, nullptr, nullptr);
  if (result != SQLITE_OK) throw DatabaseError::executionFailed(result, sqlite3_errmsg(db));
}

SessionTestFunction::~SessionTestFunction() {
  sqlite3_create_function(db_, kName, kArguments, SQLITE_UTF8, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace tessum
