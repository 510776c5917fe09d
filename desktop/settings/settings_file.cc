#include "desktop/settings/settings_file.h"

#include <optional>
#include <system_error>

#include "desktop/settings/settings_reader.h"

namespace tessum {
namespace {

// The file's text; absent when it does not exist.
std::optional<std::string> readText(const std::string& path, const Files& files) {
  try {
    return files.read(path);
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    throw SettingsError(error.what());
  }
}

constexpr std::string_view kTemplate =
    R"(# Settings of Tessum. A recorder that runs obeys as soon as this file is saved.
# Lines that begin with "#" say nothing; those that show a setting say what holds without it.
# Patterns are regular expressions and stand in single quotes: 'Editor' finds every text with that
# in it, '^Editor$' that text alone, '(?i)editor' capital or small letters.

[record]
# away-after = "5m"    # without input for so long you are away; or "never"
# titles = "each"      # a session for each title; or "last" of each activation, or "none"

# What a rule hides is never written down.

# Private windows of browsers say so in their titles. The application is kept, the title is not.
[[hide]]
title = '(?i)private browsing|incognito|inprivate'
keep = "app"

# [[hide]]
# app = '^KeePassXC$'          # in the application's name or its identifier

# [[hide]]
# between = "18:00-08:00"      # a range over midnight belongs to the day on which it begins
# days = ["mon", "tue", "wed", "thu", "fri"]

# [[hide]]
# days = ["sat", "sun"]        # whole days

# Categories of what you do; the first that matches counts.

# [[category]]
# name = "Mail"
# title = '(?i)inbox'
)";

}  // namespace

std::string settingsPath(const Locations& locations) {
  return locations.configFolder() + "/Tessum/settings.toml";
}

Settings loadSettings(const Locations& locations, const Files& files) {
  const std::string path = settingsPath(locations);
  const auto text = readText(path, files);
  if (!text) return {};
  try {
    return readSettings(*text);
  } catch (const SettingsError& error) {
    throw SettingsError(path + ", " + error.what());
  }
}

std::string_view settingsTemplate() {
  return kTemplate;
}

}  // namespace tessum
