#include "core/store/statement.h"

#include <sqlite3.h>

#include <limits>
#include <new>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/store/database_error.h"

namespace tessum {
namespace {

std::string lastMessage(sqlite3* db) {
  return db == nullptr ? "Unknown" : sqlite3_errmsg(db);
}

}  // namespace

void Statement::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}

Statement::Statement(sqlite3* db, const char* sql) : db_(db) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
  statement_.reset(statement);
  if (result != SQLITE_OK) throw DatabaseError::prepareFailed(result, lastMessage(db));
}

void Statement::checkBound(int result) const {
  if (result != SQLITE_OK) throw DatabaseError::executionFailed(result, lastMessage(db_));
}

Statement& Statement::bind(const std::string& text) {
  checkBound(sqlite3_bind_text(statement_.get(), ++position_, text.c_str(), -1, SQLITE_TRANSIENT));
  return *this;
}

Statement& Statement::bind(const std::optional<std::string>& text) {
  if (text) return bind(*text);
  checkBound(sqlite3_bind_null(statement_.get(), ++position_));
  return *this;
}

Statement& Statement::bind(Date date) {
  checkBound(sqlite3_bind_double(statement_.get(), ++position_, date.secondsSince1970));
  return *this;
}

Statement& Statement::bind(const std::optional<Date>& date) {
  if (date) return bind(*date);
  checkBound(sqlite3_bind_null(statement_.get(), ++position_));
  return *this;
}

Statement& Statement::bindRowID(std::int64_t id) {
  checkBound(sqlite3_bind_int64(statement_.get(), ++position_, id));
  return *this;
}

Statement& Statement::bindLimit(std::int64_t limit) {
  using Range = std::numeric_limits<std::int32_t>;
  TESSUM_CHECK(limit >= Range::min() && limit <= Range::max(),
               "a row limit outside the 32-bit range");
  checkBound(sqlite3_bind_int(statement_.get(), ++position_, static_cast<int>(limit)));
  return *this;
}

void Statement::reset() {
  sqlite3_reset(statement_.get());
  position_ = 0;
}

void Statement::execute() {
  const int result = sqlite3_step(statement_.get());
  if (result != SQLITE_DONE) throw DatabaseError::executionFailed(result, lastMessage(db_));
}

bool Statement::nextRow() {
  return sqlite3_step(statement_.get()) == SQLITE_ROW;
}

// Each access to a column takes SQLite's mutex. So the value is asked for first, and its type only
// when the value does not tell whether it is NULL.
const char* Statement::bytes(int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  if (text == nullptr && sqlite3_column_type(statement_.get(), column) != SQLITE_NULL) {
    throw std::bad_alloc();
  }
  return text;
}

void Statement::readText(int column, std::string& text) {
  const char* const found = bytes(column);
  TESSUM_CHECK(found != nullptr, "NULL in a column that is never NULL");
  text.clear();
  appendValidUtf8(text, found);
}

void Statement::readText(int column, std::optional<std::string>& text) {
  const char* const found = bytes(column);
  if (found == nullptr) return text.reset();
  if (!text) text.emplace();
  text->clear();
  appendValidUtf8(*text, found);
}

std::string Statement::text(int column) {
  std::string value;
  readText(column, value);
  return value;
}

std::optional<std::string> Statement::optionalText(int column) {
  std::optional<std::string> value;
  readText(column, value);
  return value;
}

Date Statement::date(int column) {
  return {real(column)};
}

std::optional<Date> Statement::optionalDate(int column) {
  const Date value = date(column);
  if (value == Date{} && sqlite3_column_type(statement_.get(), column) == SQLITE_NULL) {
    return std::nullopt;
  }
  return value;
}

std::int64_t Statement::rowID(int column) {
  return sqlite3_column_int64(statement_.get(), column);
}

std::int32_t Statement::count(int column) {
  return sqlite3_column_int(statement_.get(), column);
}

double Statement::real(int column) {
  return sqlite3_column_double(statement_.get(), column);
}

}  // namespace tessum
