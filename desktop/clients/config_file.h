// Reads an assistant application's configuration file and backs it up. The file belongs to another
// application, so we check its content before we write anything.

#pragma once

#include <optional>
#include <string>

#include "core/json/value.h"
#include "core/platform/files.h"

namespace tessum {

// What a configuration file holds.
struct ConfigFile {
  using Object = json::Value::Object;

  std::optional<std::string> bytes;  // absent when there is no file
  std::optional<Object> object;      // absent when the file holds anything else

  // Whether the file has content that writing our entry would destroy.
  [[nodiscard]] bool isDamaged() const { return bytes && !bytes->empty() && !object; }
};

// Reads the file at `path`, if it exists. Throws std::system_error when it cannot be read.
[[nodiscard]] ConfigFile lookAt(const Files& files, const std::string& path);

// Our entry in `config`; null when there is none. Owned by `config`.
[[nodiscard]] const json::Value* tessumEntry(const ConfigFile::Object& config);

// Writes `bytes`, the content of the file at `path`, to a new file beside it and returns the new
// file's path. Throws std::system_error.
[[nodiscard]] std::string keepCopy(const Files& files, const std::string& path,
                                   const std::string& bytes);

}  // namespace tessum
