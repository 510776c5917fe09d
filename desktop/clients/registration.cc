#include "desktop/clients/registration.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "desktop/clients/config_file.h"
#include "desktop/clients/edit/json_text.h"
#include "desktop/clients/edit/text_difference.h"
#include "desktop/clients/edit/toml_text.h"
#include "desktop/clients/made_folders.h"
#include "desktop/clients/registration_records.h"
#include "desktop/host/optional_file.h"

namespace tessum {
namespace {

using Outcome = RegistrationChange::Outcome;

std::unique_ptr<ConfigText> editorFor(const ServerFormat& format) {
  if (format.syntax == Syntax::toml) {
    return std::make_unique<TomlText>(format.container, kEntryKey);
  }
  return std::make_unique<JsonText>(format.container, kEntryKey);
}

// Writes the file and the folders that are missing for it.
void write(const std::string& path, const std::string& bytes, const Files& files) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  const auto missing = missingFolders(folder);
  try {
    files.createFolders(folder);
    files.replace(path, bytes);
  } catch (const std::system_error&) {
    removeEmptyFolders(missing);
    throw;
  }
}

// Removes the file; of a symbolic link, the file that it points at, for it was the file that was
// made.
void removeFile(const std::string& path) {
  std::filesystem::remove(std::filesystem::canonical(path));
}

RegistrationChange rewrite(const RegistrationFile& file, const json::Value& entry, bool isDryRun,
                           const Host& host) {
  const auto bytes = readIfThere(host.files, file.path);
  const RewrittenText edited = editorFor(file.format)->rewritten(bytes.value_or(""), entry);
  RegistrationChange change{.outcome = Outcome::changed,
                            .difference = textDifference(file.path, bytes, edited.text),
                            .text = edited.text};
  if (isDryRun) return change;
  if (edited.isLossy) change.copy = keepCopy(host.files, file.path, *bytes);
  keepRecord(file.path, {.addition = {.hasContainer = edited.hasContainer}}, host);
  write(file.path, edited.text, host.files);
  return change;
}

// The record to keep after an edit of a file whose record was `old`; absent when there is nothing
// to remember.
std::optional<RegistrationRecord> recordAfter(const EditedText& edited, const std::string& path,
                                              bool hadFile,
                                              const std::optional<RegistrationRecord>& old) {
  if (edited.isReplaced && !old) return std::nullopt;
  RegistrationRecord record = old.value_or(RegistrationRecord());
  record.addition = edited.addition;
  if (edited.isReplaced) return record;
  // A run that was ended before it wrote the file may have made folders already.
  if (hadFile || !record.hasFile) record.folders.clear();
  record.hasFile = !hadFile;
  for (auto& folder : missingFolders(std::filesystem::path(path).parent_path().string())) {
    if (std::find(record.folders.begin(), record.folders.end(), folder) == record.folders.end()) {
      record.folders.push_back(std::move(folder));
    }
  }
  return record;
}

}  // namespace

RegistrationChange registerIn(const RegistrationFile& file, const RegistrationOptions& options,
                              const Host& host) {
  if (!options.isDryRun) removeLeftBehind(file.path);
  const auto editor = editorFor(file.format);
  const json::Value entry = serverEntry(file.format, options.form, host);
  const auto bytes = readIfThere(host.files, file.path);
  try {
    const auto found = editor->entry(bytes.value_or(""));
    if (found && worksLike(*found, entry)) return {};
    if (options.isRewrite && bytes) return rewrite(file, entry, options.isDryRun, host);
    const auto old = recordOf(file.path, host);
    const EditedText edited =
        editor->withEntry(bytes.value_or(""), entry, old ? old->addition : Addition());
    if (!options.isDryRun) {
      const auto record = recordAfter(edited, file.path, bytes.has_value(), old);
      if (record) keepRecord(file.path, *record, host);
      write(file.path, edited.text, host.files);
    }
    return {.outcome = Outcome::changed,
            .difference = textDifference(file.path, bytes, edited.text),
            .text = edited.text};
  } catch (const CannotEdit& refusal) {
    if (options.isRewrite) return rewrite(file, entry, options.isDryRun, host);
    return {.outcome = Outcome::refused,
            .problem = file.path + " cannot be edited safely: " + refusal.what() +
                       ". Add these lines to it yourself:\n" + editor->lines(entry)};
  }
}

RegistrationChange unregisterFrom(const RegistrationFile& file, const RegistrationOptions& options,
                                  const Host& host) {
  if (!options.isDryRun) removeLeftBehind(file.path);
  const auto editor = editorFor(file.format);
  const auto bytes = readIfThere(host.files, file.path);
  try {
    if (!bytes || !editor->entry(*bytes)) {
      if (!options.isDryRun) dropRecord(file.path, host);
      return {};
    }
    const auto record = recordOf(file.path, host).value_or(RegistrationRecord());
    std::optional<std::string> edited = editor->withoutEntry(*bytes, record.addition);
    if (record.hasFile && editor->isEmpty(*edited)) edited.reset();
    if (!options.isDryRun) {
      if (edited) {
        write(file.path, *edited, host.files);
      } else {
        removeFile(file.path);
        removeEmptyFolders(record.folders);
      }
      dropRecord(file.path, host);
    }
    return {.outcome = Outcome::changed, .difference = textDifference(file.path, bytes, edited)};
  } catch (const CannotEdit& refusal) {
    return {.outcome = Outcome::refused,
            .problem = file.path + " cannot be edited safely: " + refusal.what() +
                       ". If it has an entry \"tessum\", take it out yourself."};
  }
}

Registration registrationIn(const RegistrationFile& file, const Host& host) {
  const auto bytes = readIfThere(host.files, file.path);
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
