#include "desktop/setup/setup_changes.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
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

namespace fs = std::filesystem;
using Kind = SetupChange::Kind;

constexpr std::array<std::pair<Kind, std::string_view>, 7> kKindNames{{
    {Kind::folder, "folder"},
    {Kind::file, "file"},
    {Kind::link, "link"},
    {Kind::service, "service"},
    {Kind::recorder, "recorder"},
    {Kind::shellExtension, "shellExtension"},
    {Kind::assistant, "assistant"},
}};

std::string_view nameOf(Kind kind) {
  return std::find_if(kKindNames.begin(), kKindNames.end(),
                      [kind](const auto& entry) { return entry.first == kind; })
      ->second;
}

Kind kindNamed(const json::Field& field) {
  const std::string name = field.text();
  for (const auto& entry : kKindNames) {
    if (entry.second == name) return entry.first;
  }
  field.fail("a kind of change");
}

json::Value toJson(const SetupChange& change) {
  json::Value::Object object{{"kind", nameOf(change.kind)}, {"target", change.target}};
  if (!change.content.empty()) object["content"] = change.content;
  if (change.before) object["before"] = *change.before;
  return object;
}

SetupChange changeFrom(const json::Field& field) {
  SetupChange change{.kind = kindNamed(field.required("kind")),
                     .target = field.required("target").text()};
  if (const auto content = field.optional("content")) change.content = content->text();
  if (const auto before = field.optional("before")) change.before = before->text();
  return change;
}

// What is not valid UTF-8 could be neither noted nor taken back.
void requireText(const SetupChange& change) {
  for (const std::string& text : {change.target, change.content, change.before.value_or("")}) {
    if (validUtf8(text) == text) continue;
    throw std::runtime_error(validUtf8(change.target) + " is not valid UTF-8, or holds such text.");
  }
}

}  // namespace

SetupChanges::SetupChanges(const Host& host)
    : host_(host), path_(host.locations.dataFolder() + "/setup.json") {
  const auto text = readIfThere(host.files, path_);
  if (!text) return;
  try {
    const json::Value document = json::parse(*text);
    for (const auto& field : json::Field(document).required("changes").elements()) {
      changes_.push_back(changeFrom(field));
    }
  } catch (const json::DecodingError& error) {
    throw std::runtime_error(path_ + " cannot be read: " + error.what());
  }
}

void SetupChanges::add(SetupChange change) {
  requireText(change);
  // Writing the notes may make the folders that they are in, which are therefore removed last.
  const auto folders = missingFolders(host_.locations.dataFolder());
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
    changes_.insert(changes_.begin(), {.kind = Kind::folder, .target = *folder});
  }
  const auto earlier =
      std::find_if(changes_.begin(), changes_.end(), [&](const SetupChange& noted) {
        return noted.kind == change.kind && noted.target == change.target;
      });
  if (earlier == changes_.end()) {
    changes_.push_back(std::move(change));
  } else {
    earlier->content = std::move(change.content);
  }
  save();
}

void SetupChanges::remove(const SetupChange& change) {
  changes_.erase(std::remove(changes_.begin(), changes_.end(), change), changes_.end());
  save();
}

void SetupChanges::removeFile() {
  std::error_code error;
  fs::remove(path_, error);
  if (error) throw std::system_error(error, "Cannot remove " + path_);
}

void SetupChanges::save() const {
  createPrivateFolders(host_.locations.dataFolder());
  json::Value::Array array;
  for (const SetupChange& change : changes_) array.push_back(toJson(change));
  json::Value::Object object;
  object["changes"] = std::move(array);
  host_.files.replace(path_, json::compact(std::move(object)) + "\n");
}

void SetupChanges::makeFolders(const std::string& path) {
  for (const std::string& missing : missingFolders(path)) {
    add({.kind = Kind::folder, .target = missing});
  }
  createPrivateFolders(path);
}

void SetupChanges::makeFile(const std::string& path, const std::string& bytes) {
  makeFolders(fs::path(path).parent_path().string());
  add({.kind = Kind::file,
       .target = path,
       .content = bytes,
       .before = readIfThere(host_.files, path)});
  host_.files.replace(path, bytes);
}

void SetupChanges::makeLink(const std::string& path, const std::string& target) {
  makeFolders(fs::path(path).parent_path().string());
  std::error_code error;
  const fs::path before = fs::read_symlink(path, error);
  SetupChange change{.kind = Kind::link, .target = path, .content = target};
  if (!error) change.before = before.string();
  add(std::move(change));
  fs::remove(path, error);
  fs::create_symlink(target, path, error);
  if (error) throw std::system_error(error, "Cannot make the link " + path);
}

bool isEditedSince(const SetupChange& change, const Host& host) {
  if (change.kind != Kind::file) return false;
  const auto text = readIfThere(host.files, change.target);
  return text && *text != change.content;
}

void takeBackOnDisk(const SetupChange& change, const Host& host) {
  std::error_code error;
  if (change.kind == Kind::folder) {
    fs::remove(change.target, error);  // which fails where anything is in it
    return;
  }
  if (change.kind == Kind::link) {
    if (fs::read_symlink(change.target, error) != change.content) return;
    fs::remove(change.target, error);
    if (change.before) fs::create_symlink(*change.before, change.target, error);
    return;
  }
  if (change.kind != Kind::file || isEditedSince(change, host)) return;
  if (change.before) {
    return host.files.replace(change.target, *change.before);
  }
  // Behind a symbolic link it is the file that was made.
  const fs::path made = fs::canonical(change.target, error);
  if (error == std::errc::no_such_file_or_directory) return;
  if (!error) fs::remove(made, error);
  if (error) throw std::system_error(error, "Cannot remove " + change.target);
}

}  // namespace tessum
