// Arbitrary bytes as an assistant's configuration file: registering and removing Tessum leaves
// everything else in it alone. An independent JSON reader checks this.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "core/install/mcp_installer.h"
#include "core/platform/files.h"
#include "core/platform/locations.h"
#include "tests/support/plain_json.h"

namespace {

using tessum::plain_json::Kind;
using tessum::plain_json::Node;

constexpr char kPath[] = "/home/ann/.cursor/mcp.json";

// One file in memory.
class OneFile final : public tessum::Files {
 public:
  explicit OneFile(std::string bytes) : bytes_(std::move(bytes)) {}

  [[nodiscard]] bool exists(const std::string& path) const override { return path == kPath; }
  [[nodiscard]] std::string read(const std::string&) const override { return bytes_; }
  void createFolders(const std::string&) const override {}
  void replace(const std::string&, std::string_view bytes) const override { bytes_ = bytes; }

 private:
  mutable std::string bytes_;
};

class NoLocations final : public tessum::Locations {
 public:
  [[nodiscard]] std::string homeFolder() const override { return "/home/ann"; }
  [[nodiscard]] std::string configFolder() const override { return {}; }
  [[nodiscard]] std::string dataFolder() const override { return "/home/ann/Tessum"; }
  [[nodiscard]] std::optional<std::string> executablePath() const override { return {}; }
};

void require(bool condition) {
  if (!condition) std::abort();
}

Node object() {
  return {Kind::object, "", {}, {}};
}

// What the file must hold afterwards: `before` with the servers' object edited by `edit`.
template <typename Edit>
Node expected(Node before, Edit edit) {
  Node& servers = before.members["mcpServers"];
  if (servers.kind != Kind::object) servers = object();
  edit(servers.members);
  return before;
}

Node entry(bool useStdio) {
  Node node = object();
  if (useStdio) {
    node.members["args"] = {Kind::array, "", {}, {}};
    node.members["command"] = {
        Kind::text, "/Applications/Tessum.app/Contents/MacOS/TessumMCP", {}, {}};
  } else {
    node.members["url"] = {Kind::text, "http://localhost:7384/mcp", {}, {}};
  }
  return node;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const auto read = tessum::plain_json::read(bytes);
  const bool isObject = read && read->kind == Kind::object;
  const Node before = isObject ? *read : object();
  const bool useStdio = size % 2 == 0;

  const OneFile file(bytes);
  const NoLocations locations;
  const tessum::MCPInstaller installer("http://localhost:7384/mcp", file, locations);

  installer.installToPath(kPath, useStdio);
  const std::string once = file.read(kPath);
  require(installer.isInstalledAtPath(kPath));
  require(tessum::plain_json::read(once) ==
          expected(before, [&](auto& servers) { servers["tessum"] = entry(useStdio); }));

  installer.installToPath(kPath, useStdio);
  require(file.read(kPath) == once);

  installer.uninstallFromPath(kPath);
  require(!installer.isInstalledAtPath(kPath));
  require(tessum::plain_json::read(file.read(kPath)) ==
          expected(before, [](auto& servers) { servers.erase("tessum"); }));

  // Without an earlier installation, a file that is not an object is left alone.
  const OneFile untouched(bytes);
  const tessum::MCPInstaller other("http://localhost:7384/mcp", untouched, locations);
  other.uninstallFromPath(kPath);
  require(!other.isInstalledAtPath(kPath));
  require(isObject || untouched.read(kPath) == bytes);
  return 0;
}
