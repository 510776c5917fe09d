#include "desktop/registration.h"

#include <stdexcept>
#include <string_view>
#include <system_error>

#include "core/install/mcp_installer.h"
#include "core/json/reader.h"
#include "desktop/entry_check.h"

namespace tessum {
namespace {

// One file as it was when it was looked at. The installer then edits the very bytes that were
// judged: read again, the file might fail this time and would be taken for an empty one.
class JudgedFile final : public Files {
 public:
  // `files` and `config` must outlive the object.
  JudgedFile(const Files& files, const ConfigFile& config) : files_(files), config_(config) {}

  [[nodiscard]] bool exists(const std::string& path) const override { return files_.exists(path); }
  [[nodiscard]] std::string read(const std::string& path) const override {
    if (config_.bytes) return *config_.bytes;
    throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), path);
  }
  void createFolders(const std::string& path) const override { files_.createFolders(path); }
  void replace(const std::string& path, std::string_view bytes) const override {
    files_.replace(path, bytes);
  }

 private:
  const Files& files_;
  const ConfigFile& config_;
};

// A path beside `path` where nothing is yet. Its ending keeps applications that read every JSON
// file of a folder away from the copy.
std::string pathOfCopy(const Files& files, const std::string& path) {
  std::string copy = path + ".before-tessum";
  for (int number = 2; files.exists(copy); ++number) {
    copy = path + ".before-tessum-" + std::to_string(number);
  }
  return copy;
}

}  // namespace

const json::Value* ConfigFile::entry() const {
  if (!object || !MCPInstaller::hasTessumEntry(*object)) return nullptr;
  return &object->at("mcpServers").object()->at("tessum");
}

ConfigFile lookAt(const Files& files, const std::string& path) {
  ConfigFile config;
  try {
    config.bytes = files.read(path);
    const json::Value document = json::parse(*config.bytes);
    if (const auto* object = document.object()) config.object = *object;
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::no_such_file_or_directory) throw;
  } catch (const json::DecodingError&) {
    // Not JSON at all: no object either.
  }
  return config;
}

std::string keepCopy(const Files& files, const std::string& path, const ConfigFile& config) {
  std::string copy = pathOfCopy(files, path);
  files.replace(copy, config.bytes.value_or(""));
  return copy;
}

void registerInFile(const Host& host, const std::string& path, const ConfigFile& config,
                    bool useStdio) {
  const JudgedFile judged(host.files, config);
  MCPInstaller(usualEndpointURL(), judged, host.locations).installToPath(path, useStdio);
}

bool unregisterInFile(const Host& host, const std::string& path) {
  const ConfigFile config = lookAt(host.files, path);
  if (config.isDamaged()) {
    throw std::runtime_error("Cannot tell what " + path +
                             " holds: it is not a JSON object. It was left as it is.");
  }
  if (config.entry() == nullptr) return false;
  const JudgedFile judged(host.files, config);
  MCPInstaller(usualEndpointURL(), judged, host.locations).uninstallFromPath(path);
  return true;
}

std::string stdioServerPath(const Host& host) {
  return MCPInstaller(usualEndpointURL(), host.files, host.locations).stdioBinaryPath();
}

}  // namespace tessum
