#include "core/workspace/linux/desktop_entries.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "core/base/text.h"

namespace tessum {
namespace {

constexpr std::string_view kSuffix = ".desktop";
constexpr int kDeepestFolder = 4;                 // in practice one or two
constexpr std::uintmax_t kLargestFile = 1 << 20;  // bytes; most are a few kilobytes
constexpr std::int64_t kMissing = -1;

std::string_view withoutSuffix(std::string_view id) {
  if (id.ends_with(kSuffix)) id.remove_suffix(kSuffix.size());
  return id;
}

// In values, \s \n \t \r and \\ stand for space, line feed, tab, carriage return and backslash.
std::string unescaped(std::string_view value) {
  constexpr std::string_view kLetters = "sntr\\";
  constexpr std::string_view kMeanings = " \n\t\r\\";
  std::string out;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto letter =
        value[i] == '\\' && i + 1 < value.size() ? kLetters.find(value[i + 1]) : std::string::npos;
    if (letter == std::string::npos) {
      out += value[i];
    } else {
      out += kMeanings[letter];
      ++i;
    }
  }
  return validUtf8(out);
}

// The values of the [Desktop Entry] group, by key; a repeated key keeps its first value.
std::map<std::string_view, std::string_view> keysOfEntry(std::string_view text) {
  std::map<std::string_view, std::string_view> keys;
  bool isInGroup = false;
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const auto content = trimWhiteSpace(line);
    if (content.starts_with('[')) isInGroup = content == "[Desktop Entry]";
    const auto equals = content.find('=');
    if (!isInGroup || content.starts_with('#') || equals == std::string_view::npos) continue;
    keys.emplace(trimWhiteSpace(content.substr(0, equals)),
                 trimWhiteSpace(content.substr(equals + 1)));
  }
  return keys;
}

std::int64_t changeTime(const std::string& folder) {
  std::error_code error;
  const auto time = std::filesystem::last_write_time(folder, error);
  return error ? kMissing : static_cast<std::int64_t>(time.time_since_epoch().count());
}

// The text of the file; empty when it cannot be read or is too large to be a desktop entry.
std::string textOf(const std::filesystem::path& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size > kLargestFile) return {};
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

std::vector<std::string> localeSuffixes(std::string_view locale) {
  std::string modifier;
  if (const auto at = locale.find('@'); at != std::string_view::npos) {
    modifier = locale.substr(at);
    locale = locale.substr(0, at);
  }
  locale = locale.substr(0, locale.find('.'));
  if (locale.empty() || locale == "C" || locale == "POSIX") return {};
  const std::string full(locale);
  const std::string language(locale.substr(0, locale.find('_')));

  std::vector<std::string> suffixes;
  for (const auto& suffix : {full + modifier, full, language + modifier, language}) {
    if (std::find(suffixes.begin(), suffixes.end(), suffix) == suffixes.end()) {
      suffixes.push_back(suffix);
    }
  }
  return suffixes;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              const std::vector<std::string>& localeSuffixes) {
  const auto keys = keysOfEntry(text);
  const auto value = [&](std::string_view key) -> std::optional<std::string> {
    const auto found = keys.find(key);
    if (found == keys.end() || found->second.empty()) return std::nullopt;
    return unescaped(found->second);
  };
  if (value("Type") != "Application" || value("Hidden") == "true") return std::nullopt;
  auto name = value("Name");
  if (!name) return std::nullopt;
  for (const auto& suffix : localeSuffixes) {
    const auto localized = value("Name[" + suffix + "]");
    if (!localized) continue;
    name = localized;
    break;
  }
  auto sandboxId = value("X-Flatpak");
  if (!sandboxId) sandboxId = value("X-SnapInstanceName");
  return DesktopEntry{*name, value("StartupWMClass"), std::move(sandboxId)};
}

std::vector<std::string> dataFolders(std::string_view home, std::string_view others) {
  std::vector<std::string> folders;
  const auto add = [&](std::string_view folder) {
    while (folder.ends_with('/')) folder.remove_suffix(1);
    if (folder.starts_with('/')) folders.emplace_back(folder);
  };
  add(home);
  while (!others.empty()) {
    const auto folder = others.substr(0, others.find(':'));
    others.remove_prefix(std::min(folder.size() + 1, others.size()));
    add(folder);
  }
  return folders;
}

void DesktopEntries::refresh() {
  const auto isUnchanged = [](const auto& folder) {
    return changeTime(folder.first) == folder.second;
  };
  if (hasRead_ && std::all_of(readFolders_.begin(), readFolders_.end(), isUnchanged)) return;
  hasRead_ = true;
  readFolders_.clear();
  entries_.clear();
  for (const auto& folder : folders_) readFolder(folder, "", 0);
}

void DesktopEntries::readFolder(const std::string& folder, const std::string& idPrefix, int depth) {
  readFolders_.emplace_back(folder, changeTime(folder));
  std::error_code error;
  std::filesystem::directory_iterator files(folder, error);
  while (!error && files != std::filesystem::directory_iterator()) {
    const auto& path = files->path();
    const std::string name = path.filename().string();
    std::error_code ignored;
    if (name.ends_with(kSuffix)) {
      const std::string id = idPrefix + std::string(withoutSuffix(name));
      if (!entries_.contains(id)) entries_[id] = parseDesktopEntry(textOf(path), localeSuffixes_);
    } else if (depth < kDeepestFolder && files->is_directory(ignored)) {
      readFolder(path.string(), idPrefix + name + "-", depth + 1);
    }
    files.increment(error);
  }
}

std::optional<DesktopEntries::Match> DesktopEntries::withId(std::string_view id) const {
  id = id.substr(id.rfind('/') + 1);  // npos + 1 is 0
  const auto found = entries_.find(withoutSuffix(id));
  if (found == entries_.end() || !found->second) return std::nullopt;
  return Match{found->first, *found->second};
}

std::optional<DesktopEntries::Match> DesktopEntries::forSandbox(std::string_view sandboxId) const {
  for (const auto& [id, entry] : entries_) {
    if (entry && entry->sandboxId == sandboxId) return Match{id, *entry};
  }
  return std::nullopt;
}

std::optional<DesktopEntries::Match> DesktopEntries::forWindowClass(
    const std::string& instance, const std::string& windowClass) const {
  for (const auto& claimed : {instance, windowClass}) {
    if (claimed.empty()) continue;
    for (const auto& [id, entry] : entries_) {
      if (entry && entry->startupWMClass == claimed) return Match{id, *entry};
    }
  }
  const auto names = {lowerCaseAscii(instance), lowerCaseAscii(windowClass)};
  for (const auto& name : names) {
    if (name.empty()) continue;
    for (const auto& [id, entry] : entries_) {
      if (entry && lowerCaseAscii(entry->startupWMClass.value_or("")) == name) {
        return Match{id, *entry};
      }
    }
  }
  for (const auto& name : names) {
    if (name.empty()) continue;
    for (const auto& [id, entry] : entries_) {
      if (entry && lowerCaseAscii(id) == name) return Match{id, *entry};
    }
  }
  return std::nullopt;
}

}  // namespace tessum
