// The configuration file of an assistant application, as it is found. Files of other applications
// are due some care: what is there is looked at before anything is written.

#pragma once

#include <optional>
#include <string>

#include "core/json/value.h"
#include "core/platform/files.h"

namespace tessum {

// What a configuration file holds.
struct ConfigFile {
  using Object = json::Value::Object;

  std::optional<std::string> bytes;  // absent where there is no file
  std::optional<Object> object;      // absent where the file holds anything else

  // Whether there is something that a new file would destroy.
  [[nodiscard]] bool isDamaged() const { return bytes && !bytes->empty() && !object; }
};

// Throws std::system_error when there is a file at `path` that cannot be read.
[[nodiscard]] ConfigFile lookAt(const Files& files, const std::string& path);

// Our entry in `config`; null where there is none. Owned by `config`.
[[nodiscard]] const json::Value* tessumEntry(const ConfigFile::Object& config);

// Writes `bytes`, which were found at `path`, to a new file beside it and gives that one's path.
// Throws std::system_error.
[[nodiscard]] std::string keepCopy(const Files& files, const std::string& path,
                                   const std::string& bytes);

}  // namespace tessum
