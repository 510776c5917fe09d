// Remembers what registering Tessum added to files, in registrations.json in the data folder.
//
// A record is only a hint: it may be out of date or gone, because the files belong to other
// applications. Callers check whether what it says is still in the file.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/clients/edit/config_text.h"
#include "desktop/host/host.h"

namespace tessum {

// What was added for one file.
struct RegistrationRecord {
  Addition addition = {};
  bool hasFile = false;                   // the file itself was made
  std::vector<std::string> folders = {};  // the folders that were made for it, outermost first

  friend bool operator==(const RegistrationRecord&, const RegistrationRecord&) = default;
};

// The record of the file at `path`; absent when there is none that can be made out. Throws
// std::system_error when the records cannot be read.
[[nodiscard]] std::optional<RegistrationRecord> recordOf(const std::string& path, const Host& host);

// The paths of all files that have a record, in their order. Throws as recordOf() does.
[[nodiscard]] std::vector<std::string> recordedFiles(const Host& host);

// Keeps `record` in place of an older one of that file. A path that is not UTF-8 has none. Throws
// std::system_error.
void keepRecord(const std::string& path, const RegistrationRecord& record, const Host& host);

// Drops the record of that file, if there is one, and with the last one the file of records and
// the folders made for it. Throws std::system_error.
void dropRecord(const std::string& path, const Host& host);

}  // namespace tessum
