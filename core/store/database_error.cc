#include "core/store/database_error.h"

#include <sqlite3.h>

#include <utility>

namespace tessum {
namespace {

// The low byte of an extended result code is the primary one.
constexpr int kPrimaryCode = 0xFF;

}  // namespace

DatabaseError::DatabaseError(Case errorCase, int code, std::string description)
    : DescribedError(std::move(description)), case_(errorCase), code_(code & kPrimaryCode) {}

DatabaseError DatabaseError::openFailed(int code, std::string_view message) {
  return {Case::openFailed, code, "Failed to open database: " + std::string(message)};
}

DatabaseError DatabaseError::prepareFailed(int code, std::string_view message) {
  return {Case::prepareFailed, code, "Failed to prepare statement: " + std::string(message)};
}

DatabaseError DatabaseError::executionFailed(int code, std::string_view message) {
  return {Case::executionFailed, code, "Failed to execute statement: " + std::string(message)};
}

bool DatabaseError::isLocked() const {
  return code_ == SQLITE_BUSY || code_ == SQLITE_LOCKED;
}

}  // namespace tessum
