// Desktop entries: the files in which applications give their names to a Linux desktop.

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessum {

// What a desktop entry says about its application.
struct DesktopEntry {
  std::string name;                           // in the user's language where it is given
  std::optional<std::string> startupWMClass;  // class or instance of the application's windows

  friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

// The keys' suffixes to look for, the best first, for the value of a variable such as LANG:
// de_DE@euro, de_DE, de@euro and de for "de_DE.UTF-8@euro", none for "C".
[[nodiscard]] std::vector<std::string> localeSuffixes(std::string_view locale);

// Reads the text of a desktop entry. Absent when the entry does not describe an application, is
// marked as deleted or has no name.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(
    std::string_view text, const std::vector<std::string>& localeSuffixes);

// The folders of data, the one that counts most first: `home`, then each of `others`, which are
// separated by colons. Desktop entries are below "applications" in each.
[[nodiscard]] std::vector<std::string> dataFolders(std::string_view home, std::string_view others);

// The desktop entries of some folders and those below them. An entry's id is its path below the
// folder, with dashes for slashes and without ".desktop". Where several entries have one id, that
// of the first folder counts; if it is marked as deleted, there is no entry. Not thread-safe.
class DesktopEntries {
 public:
  struct Match {
    std::string id;
    DesktopEntry entry;
  };

  // Reads nothing yet.
  DesktopEntries(std::vector<std::string> folders, std::vector<std::string> localeSuffixes)
      : folders_(std::move(folders)), localeSuffixes_(std::move(localeSuffixes)) {}

  // Reads the folders again if files came or went since they were last read.
  void refresh();

  // The entry with that id, which may end in ".desktop". Of a path only the last part counts.
  [[nodiscard]] std::optional<Match> withId(std::string_view id) const;

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
  std::vector<std::pair<std::string, std::int64_t>> readFolders_;  // each with its time of change
  std::map<std::string, std::optional<DesktopEntry>, std::less<>> entries_;  // by id
};

}  // namespace tessum
