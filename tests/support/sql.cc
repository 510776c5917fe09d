#include "tests/support/sql.h"

#include <sqlite3.h>

#include <array>
#include <fstream>
#include <memory>
#include <stdexcept>

namespace tessum {

Sql::Sql(const std::string& path) {
  if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) {
    const std::string message = sqlite3_errmsg(db_);
    sqlite3_close(db_);
    throw std::runtime_error(message);
  }
}

Sql::~Sql() {
  sqlite3_close(db_);
}

void Sql::run(const std::string& script) {
  if (sqlite3_exec(db_, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(db_));
  }
}

std::string Sql::failureOf(const std::string& script) {
  try {
    run(script);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  throw std::logic_error("it did not fail: " + script);
}

std::vector<std::string> Sql::rows(const std::string& query) {
  std::vector<std::string> rows;
  const auto addRow = [](void* all, int count, char** columns, char**) {
    std::string row;
    for (int i = 0; i < count; ++i) {
      if (i > 0) row += '|';
      row += columns[i] != nullptr ? columns[i] : "NULL";
    }
    static_cast<std::vector<std::string>*>(all)->push_back(row);
    return 0;
  };
  if (sqlite3_exec(db_, query.c_str(), addRow, &rows, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(db_));
  }
  return rows;
}

std::string Sql::row(const std::string& query) {
  const auto all = rows(query);
  return all.empty() ? "" : all.front();
}

std::uint32_t changeCounter(const std::string& path) {
  constexpr std::streamoff kOffset = 24;
  std::ifstream file(path, std::ios::binary);
  std::array<unsigned char, 4> bytes{};
  file.seekg(kOffset).read(reinterpret_cast<char*>(bytes.data()), bytes.size());
  std::uint32_t count = 0;
  for (const unsigned char byte : bytes) count = count << 8U | byte;
  return count;
}

std::string sqliteText(int result) {
  return sqlite3_errstr(result);
}

}  // namespace tessum
