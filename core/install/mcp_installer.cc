#include "core/install/mcp_installer.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "core/base/text.h"
#include "core/json/reader.h"
#include "core/json/writer.h"

namespace tessum {
namespace {

constexpr std::string_view kServers = "mcpServers";
constexpr std::string_view kTessum = "tessum";

constexpr std::string_view kStdioBinary = "TessumMCP";
constexpr std::string_view kUsualStdioBinaryPath =
    "/Applications/Tessum.app/Contents/MacOS/TessumMCP";

using Object = MCPInstaller::Object;

// The servers in `config`; null when "mcpServers" is missing or not an object.
const Object* serversOf(const Object& config) {
  const auto member = config.find(kServers);
  return member == config.end() ? nullptr : member->second.object();
}

Object copyOfServers(const Object& config) {
  const Object* servers = serversOf(config);
  return servers == nullptr ? Object() : *servers;
}

Object withServers(Object config, Object servers) {
  config.insert_or_assign(std::string(kServers), std::move(servers));
  return config;
}

}  // namespace

MCPInstaller::MCPInstaller(std::string serverURL, const Files& files, const Locations& locations)
    : serverURL_(std::move(serverURL)), files_(&files), locations_(&locations) {}

std::string MCPInstaller::stdioBinaryPath() const {
  if (const auto executable = locations_->executablePath()) {
    const auto folder = std::filesystem::path(*executable).parent_path();
    std::string beside = (folder / kStdioBinary).string();
    if (files_->exists(beside)) return beside;
  }
  return std::string(kUsualStdioBinaryPath);
}

bool MCPInstaller::isInstalled(MCPClient client) const {
  return isInstalledAtPath(client.configPath(*locations_));
}

bool MCPInstaller::isInstalledAtPath(const std::string& path) const {
  const auto config = readConfig(path);
  return config && hasTessumEntry(*config);
}

void MCPInstaller::install(MCPClient client) const {
  installToPath(client.configPath(*locations_), client.prefersStdio());
}

void MCPInstaller::installToPath(const std::string& path, bool useStdio) const {
  writeConfig(setTessumEntry(readConfig(path).value_or(Object()), useStdio), path);
}

void MCPInstaller::uninstall(MCPClient client) const {
  uninstallFromPath(client.configPath(*locations_));
}

void MCPInstaller::uninstallFromPath(const std::string& path) const {
  auto config = readConfig(path);
  if (!config) return;
  writeConfig(removeTessumEntry(*std::move(config)), path);
}

bool MCPInstaller::hasTessumEntry(const Object& config) {
  const Object* servers = serversOf(config);
  return servers != nullptr && servers->contains(kTessum);
}

Object MCPInstaller::setTessumEntry(Object config, bool useStdio) const {
  Object servers = copyOfServers(config);
  servers.insert_or_assign(std::string(kTessum), entry(useStdio));
  return withServers(std::move(config), std::move(servers));
}

Object MCPInstaller::removeTessumEntry(Object config) {
  Object servers = copyOfServers(config);
  servers.erase(std::string(kTessum));
  return withServers(std::move(config), std::move(servers));
}

void MCPInstaller::writeConfig(const Object& config, const std::string& path) const {
  const auto folder = std::filesystem::path(path).parent_path();
  if (!folder.empty()) files_->createFolders(folder.string());
  files_->replace(path, json::pretty(config));
}

std::optional<Object> MCPInstaller::readConfig(const std::string& path) const {
  try {
    const json::Value config = json::parse(files_->read(path));
    if (const Object* object = config.object()) return *object;
  } catch (const std::system_error&) {
    // To all callers, a file that cannot be read is one without an object.
  } catch (const json::DecodingError&) {
  }
  return std::nullopt;
}

Object MCPInstaller::entry(bool useStdio) const {
  if (!useStdio) return {{"url", serverURL_}};
  std::string command = stdioBinaryPath();
  if (validUtf8(command) != command) {
    throw std::system_error(std::make_error_code(std::errc::illegal_byte_sequence),
                            "Cannot write the path " + validUtf8(command));
  }
  return {{"args", json::Value::Array()}, {"command", std::move(command)}};
}

}  // namespace tessum
