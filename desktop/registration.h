// Registering Tessum in one configuration file, with the care that the files of other
// applications are due: what is there is looked at first.

#pragma once

#include <optional>
#include <string>

#include "core/json/value.h"
#include "desktop/command.h"

namespace tessum {

// What a configuration file holds.
struct ConfigFile {
  std::optional<std::string> bytes;           // absent where there is no file
  std::optional<json::Value::Object> object;  // absent where the file holds anything else

  // Whether there is something that registering would destroy.
  [[nodiscard]] bool isDamaged() const { return bytes && !bytes->empty() && !object; }

  // Our entry in it; null where there is none. Owned by this object.
  [[nodiscard]] const json::Value* entry() const;
};

// Throws std::system_error when there is a file at `path` that cannot be read.
[[nodiscard]] ConfigFile lookAt(const Files& files, const std::string& path);

// Copies the bytes of `config`, which was found at `path`, to a new file beside it and gives that
// one's path. Throws std::system_error.
[[nodiscard]] std::string keepCopy(const Files& files, const std::string& path,
                                   const ConfigFile& config);

// Writes our entry into the file at `path`, where `config` was found, in the stdio form or the
// HTTP form. Throws std::system_error when it cannot be written, which leaves it as it was.
void registerInFile(const Host& host, const std::string& path, const ConfigFile& config,
                    bool useStdio);

// Removes our entry from the file at `path`: whether it held one. A file that holds none is not
// touched. Throws std::system_error when the file cannot be read or written, and
// std::runtime_error when it is no JSON object, so that nobody knows what it holds.
bool unregisterInFile(const Host& host, const std::string& path);

// The path of the stdio server that an entry would start, whether or not it is there.
[[nodiscard]] std::string stdioServerPath(const Host& host);

}  // namespace tessum
