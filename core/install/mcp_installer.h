// Registers Tessum in the configuration files of assistant applications.
//
// All of them keep their servers in one JSON object: "mcpServers" at the top level maps the names
// of servers to entries. One entry is ours, "tessum"; it either starts the stdio server,
//   {"args": [], "command": "/usr/bin/TessumMCP"}
// or names the HTTP endpoint,
//   {"url": "http://localhost:7384/mcp"}
// and replaces an older entry as a whole. Every other value is written back as it was read, numbers
// digit for digit; only white space and the order of keys change.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/install/mcp_client.h"
#include "core/json/value.h"
#include "core/platform/files.h"
#include "core/platform/locations.h"

namespace tessum {

// Immutable. Two concurrent writers of one file are not coordinated: the last one wins.
class MCPInstaller {
 public:
  using Object = json::Value::Object;

  // `serverURL` is the absolute URL of the HTTP endpoint, valid UTF-8. `files` and `locations`
  // must outlive the installer.
  MCPInstaller(std::string serverURL, const Files& files, const Locations& locations);

  [[nodiscard]] const std::string& serverURL() const { return serverURL_; }

  // The path of the stdio server: the one beside the running program if it exists, else that in the
  // application's usual location, whether or not it exists.
  [[nodiscard]] std::string stdioBinaryPath() const;

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Configuration files, by application or by path.

  // Whether the file holds our entry. False for a file that cannot be read or is not a JSON object.
  [[nodiscard]] bool isInstalled(MCPClient client) const;
  [[nodiscard]] bool isInstalledAtPath(const std::string& path) const;

  // Writes our entry, in the form that the application prefers or in the requested one. A missing
  // file is created with its folders; one that cannot be read or is not a JSON object is replaced
  // by the entry alone. Throws std::system_error when the file cannot be written, and then leaves
  // it unchanged.
  void install(MCPClient client) const;
  void installToPath(const std::string& path, bool useStdio) const;

  // Removes our entry. The object around it stays, and is added where it was missing, so the file
  // is written even when it held no entry. A file that cannot be read or is not a JSON object is
  // left alone. Throws as installing does.
  void uninstall(MCPClient client) const;
  void uninstallFromPath(const std::string& path) const;

  ////////////////////////////////////////////////////////////////////////////////////////////
  // The same operations on a file's object.

  // Whether "mcpServers" is an object with a "tessum" of any kind, null included.
  [[nodiscard]] static bool hasTessumEntry(const Object& config);

  // `config` with our entry. An "mcpServers" that is not an object is replaced. Throws
  // std::system_error when the path of the stdio server is not UTF-8, which JSON cannot say.
  [[nodiscard]] Object setTessumEntry(Object config, bool useStdio) const;

  // `config` without our entry, and with an "mcpServers" object, empty where it was not one.
  [[nodiscard]] static Object removeTessumEntry(Object config);

  // Writes `config` to the file at `path` and creates its folders. Throws std::system_error.
  void writeConfig(const Object& config, const std::string& path) const;

 private:
  // The object that the file holds; absent when it cannot be read or holds something else.
  [[nodiscard]] std::optional<Object> readConfig(const std::string& path) const;

  [[nodiscard]] Object entry(bool useStdio) const;

  std::string serverURL_;
  const Files* files_;
  const Locations* locations_;
};

}  // namespace tessum
