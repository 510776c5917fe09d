#include "desktop/clients/registration.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "core/json/writer.h"
#include "desktop/clients/config_file.h"
#include "desktop/clients/edit/json_text.h"
#include "desktop/clients/edit/text_difference.h"

namespace tessum {
namespace {

using Outcome = RegistrationChange::Outcome;
using Object = json::Value::Object;

std::unique_ptr<ConfigText> editorFor(const ServerFormat& format) {
  return std::make_unique<JsonText>(format.container, kEntryKey);
}

// The bytes of the file; absent when there is no file.
std::optional<std::string> bytesOf(const std::string& path, const Files& files) {
  try {
    return files.read(path);
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::no_such_file_or_directory) throw;
    return std::nullopt;
  }
}

void write(const std::string& path, const std::string& bytes, const Files& files) {
  files.createFolders(std::filesystem::path(path).parent_path().string());
  files.replace(path, bytes);
}

// The file with our entry alone added to its object, written as the core writes such files. What
// is no object is lost.
std::string rewritten(const RegistrationFile& file, const ConfigFile& config,
                      const json::Value& entry) {
  Object root = config.object.value_or(Object());
  const std::string container(file.format.container);
  const auto old = root.find(container);
  const bool hasServers = old != root.end() && old->second.object() != nullptr;
  Object servers = hasServers ? *old->second.object() : Object();
  servers.insert_or_assign(std::string(kEntryKey), entry);
  root.insert_or_assign(container, std::move(servers));
  return json::pretty(root);
}

RegistrationChange rewrite(const RegistrationFile& file, const json::Value& entry, bool isDryRun,
                           const Host& host) {
  const ConfigFile config = lookAt(host.files, file.path);
  const std::string text = rewritten(file, config, entry);
  RegistrationChange change{.outcome = Outcome::changed,
                            .difference = textDifference(file.path, config.bytes, text)};
  if (isDryRun) return change;
  if (config.isDamaged()) change.copy = keepCopy(host.files, file.path, *config.bytes);
  write(file.path, text, host.files);
  return change;
}

}  // namespace

RegistrationChange registerIn(const RegistrationFile& file, const RegistrationOptions& options,
                              const Host& host) {
  const auto editor = editorFor(file.format);
  const json::Value entry = serverEntry(file.format, options.form, host);
  const auto bytes = bytesOf(file.path, host.files);
  try {
    const auto old = editor->entry(bytes.value_or(""));
    if (old && worksLike(*old, entry)) return {};
    if (options.isRewrite && bytes) return rewrite(file, entry, options.isDryRun, host);
    const EditedText edited = editor->withEntry(bytes.value_or(""), entry);
    if (!options.isDryRun) write(file.path, edited.text, host.files);
    return {.outcome = Outcome::changed,
            .difference = textDifference(file.path, bytes, edited.text)};
  } catch (const CannotEdit& refusal) {
    if (options.isRewrite) return rewrite(file, entry, options.isDryRun, host);
    return {.outcome = Outcome::refused,
            .problem = file.path + " cannot be edited safely: " + refusal.what() +
                       ". Add these lines to it yourself:\n" + editor->lines(entry)};
  }
}

RegistrationChange unregisterFrom(const RegistrationFile& file, const RegistrationOptions& options,
                                  const Host& host) {
  const auto editor = editorFor(file.format);
  const auto bytes = bytesOf(file.path, host.files);
  if (!bytes) return {};
  try {
    if (!editor->entry(*bytes)) return {};
    const std::string edited = editor->withoutEntry(*bytes, std::nullopt);
    if (!options.isDryRun) write(file.path, edited, host.files);
    return {.outcome = Outcome::changed, .difference = textDifference(file.path, bytes, edited)};
  } catch (const CannotEdit& refusal) {
    return {.outcome = Outcome::refused,
            .problem = file.path + " cannot be edited safely: " + refusal.what() +
                       ". If it has an entry \"tessum\", take it out yourself."};
  }
}

Registration registrationIn(const RegistrationFile& file, const Host& host) {
  const auto bytes = bytesOf(file.path, host.files);
  if (!bytes) return {};
  try {
    const auto entry = editorFor(file.format)->entry(*bytes);
    if (!entry) return {};
    return {.entry = checkEntry(*entry)};
  } catch (const CannotEdit& refusal) {
    return {.problem = refusal.what()};
  }
}

}  // namespace tessum
