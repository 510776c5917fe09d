#include "core/store/database_error.h"

namespace tessum {

DatabaseError::DatabaseError(Case errorCase, std::string_view prefix, std::string_view message)
    : case_(errorCase), description_(std::string(prefix) + std::string(message)) {}

DatabaseError DatabaseError::openFailed(std::string_view message) {
  return {Case::openFailed, "Failed to open database: ", message};
}

DatabaseError DatabaseError::prepareFailed(std::string_view message) {
  return {Case::prepareFailed, "Failed to prepare statement: ", message};
}

DatabaseError DatabaseError::executionFailed(std::string_view message) {
  return {Case::executionFailed, "Failed to execute statement: ", message};
}

}  // namespace tessum
