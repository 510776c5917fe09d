// Desktop entries: the files that describe applications to a Linux desktop.

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessum {

// The contents of one desktop entry.
struct DesktopEntry {
  std::string name;                                // in the user's language where available
  std::optional<std::string> startupWMClass = {};  // class or instance of the application's windows
  std::optional<std::string> sandboxId = {};       // the application's name for Flatpak or Snap

  friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

// The key suffixes to look for, best first, given the value of a variable such as LANG: de_DE@euro,
// de_DE, de@euro and de for "de_DE.UTF-8@euro", none for "C".
[[nodiscard]] std::vector<std::string> localeSuffixes(std::string_view locale);

// Parses a desktop entry. Absent when it does not describe an application, is marked as deleted or
// has no name.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(
    std::string_view text, const std::vector<std::string>& localeSuffixes);

// The folders of data, the one that counts most first: `home`, then each of `others`, which are
// separated by colons. Desktop entries are below "applications" in each.
[[nodiscard]] std::vector<std::string> dataFolders(std::string_view home, std::string_view others);

// The desktop entries of some folders and their subfolders. An entry's id is its path below the
// folder, with dashes for slashes and without ".desktop". If several entries have the same id, the
// one in the first folder counts; if that is marked as deleted, there is no entry. Not thread-safe.
class DesktopEntries {
 public:
  struct Match {
    std::string id;
    DesktopEntry entry;
  };

  // Reads nothing yet.
  DesktopEntries(std::vector<std::string> folders, std::vector<std::string> localeSuffixes)
      : folders_(std::move(folders)), localeSuffixes_(std::move(localeSuffixes)) {}

  // Reads the folders again if files were added or removed since the last read.
  void refresh();

  // The entry with that id, which may end in ".desktop"; for a path, its last component.
  [[nodiscard]] std::optional<Match> withId(std::string_view id) const;

  // The first entry of the sandboxed application with that id.
  [[nodiscard]] std::optional<Match> forSandbox(std::string_view sandboxId) const;

  // The entry that claims windows of that instance or class, else one that does when case is
  // ignored, as some compositors tell the class in small letters, else the one whose id equals one
  // of them when case is ignored. The instance comes first, because it tells apart applications
  // that run inside another one.
  [[nodiscard]] std::optional<Match> forWindowClass(const std::string& instance,
                                                    const std::string& windowClass) const;

 private:
  void readFolder(const std::string& folder, const std::string& idPrefix, int depth);

  std::vector<std::string> folders_;
  std::vector<std::string> localeSuffixes_;
  bool hasRead_ = false;
  std::vector<std::pair<std::string, std::int64_t>> readFolders_;  // with modification times
  std::map<std::string, std::optional<DesktopEntry>, std::less<>> entries_;  // by id
};

}  // namespace tessum
