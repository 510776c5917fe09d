#include "desktop/clients/registration_records.h"

#include <filesystem>
#include <utility>

#include "core/base/text.h"
#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/writer.h"
#include "core/platform/private_files.h"
#include "desktop/clients/made_folders.h"
#include "desktop/host/optional_file.h"

namespace tessum {
namespace {

using Object = json::Value::Object;
using Array = json::Value::Array;

constexpr std::string_view kFiles = "files";
constexpr std::string_view kFolders = "folders";

std::string recordsFile(const Host& host) {
  return host.locations.dataFolder() + "/registrations.json";
}

// Every record; empty when there is no file of records, or none that can be made out. Throws
// std::system_error for one that cannot be read.
Object allRecords(const Host& host) {
  const auto text = readIfThere(host.files, recordsFile(host));
  if (!text) return {};
  try {
    const json::Value all = json::parse(*text);
    if (const Object* object = all.object()) return *object;
  } catch (const json::DecodingError&) {
  }
  return {};
}

Object filesOf(const Object& all) {
  const auto files = all.find(kFiles);
  const Object* object = files == all.end() ? nullptr : files->second.object();
  return object == nullptr ? Object() : *object;
}

Array written(const std::vector<std::string>& folders) {
  Array array;
  for (const std::string& folder : folders) array.emplace_back(validUtf8(folder));
  return array;
}

std::vector<std::string> foldersOf(const json::Value& object) {
  std::vector<std::string> folders;
  const json::Field field = json::Field(object).required(kFolders);
  for (const json::Field& folder : field.elements()) folders.push_back(folder.text());
  return folders;
}

json::Value written(const RegistrationRecord& record) {
  return Object{{"added", record.addition.text},
                {"comma", record.addition.hasComma},
                {"container", record.addition.hasContainer},
                {"file", record.hasFile},
                {std::string(kFolders), written(record.folders)}};
}

bool isTrue(const json::Value& object, std::string_view key) {
  return json::Field(object).required(key).boolean();
}

void save(Object all, Object records, const Host& host) {
  all.insert_or_assign(std::string(kFiles), std::move(records));
  createPrivateFolders(host.locations.dataFolder());
  host.files.replace(recordsFile(host), json::pretty(all) + "\n");
}

}  // namespace

std::optional<RegistrationRecord> recordOf(const std::string& path, const Host& host) {
  const Object files = filesOf(allRecords(host));
  const auto found = files.find(path);
  if (found == files.end()) return std::nullopt;
  try {
    const json::Value& record = found->second;
    return RegistrationRecord{.addition = {.text = json::Field(record).required("added").text(),
                                           .hasComma = isTrue(record, "comma"),
                                           .hasContainer = isTrue(record, "container")},
                              .hasFile = isTrue(record, "file"),
                              .folders = foldersOf(record)};
  } catch (const json::DecodingError&) {
    return std::nullopt;
  }
}

std::vector<std::string> recordedFiles(const Host& host) {
  std::vector<std::string> paths;
  for (const auto& [path, record] : filesOf(allRecords(host))) paths.push_back(path);
  return paths;
}

void keepRecord(const std::string& path, const RegistrationRecord& record, const Host& host) {
  if (validUtf8(path) != path) return;
  Object all = allRecords(host);
  Object files = filesOf(all);
  if (files.empty()) {
    all.insert_or_assign(std::string(kFolders),
                         written(missingFolders(host.locations.dataFolder())));
  }
  files.insert_or_assign(path, written(record));
  save(std::move(all), std::move(files), host);
}

void dropRecord(const std::string& path, const Host& host) {
  Object all = allRecords(host);
  Object files = filesOf(all);
  if (files.erase(path) == 0) return;
  if (!files.empty()) return save(std::move(all), std::move(files), host);
  std::filesystem::remove(recordsFile(host));
  try {
    removeEmptyFolders(foldersOf(all));
  } catch (const json::DecodingError&) {
    // The list of folders is only a hint, like the rest.
  }
}

}  // namespace tessum
