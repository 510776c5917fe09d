#include "desktop/clients/config_file.h"

#include <system_error>

#include "core/install/mcp_installer.h"
#include "core/json/reader.h"

namespace tessum {

ConfigFile lookAt(const Files& files, const std::string& path) {
  ConfigFile config;
  try {
    config.bytes = files.read(path);
    const json::Value document = json::parse(*config.bytes);
    if (const auto* object = document.object()) config.object = *object;
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::no_such_file_or_directory) throw;
  } catch (const json::DecodingError&) {
    // Not JSON, so not an object.
  }
  return config;
}

const json::Value* tessumEntry(const ConfigFile::Object& config) {
  if (!MCPInstaller::hasTessumEntry(config)) return nullptr;
  return &config.at("mcpServers").object()->at("tessum");
}

std::string keepCopy(const Files& files, const std::string& path, const std::string& bytes) {
  // With this extension, applications that read every JSON file of a folder ignore the copy.
  std::string copy = path + ".before-tessum";
  for (int number = 2; files.exists(copy); ++number) {
    copy = path + ".before-tessum-" + std::to_string(number);
  }
  files.replace(copy, bytes);
  return copy;
}

}  // namespace tessum
