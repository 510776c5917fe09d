#include "desktop/settings/settings_file.h"

#include <optional>
#include <system_error>

#include "desktop/host/optional_file.h"
#include "desktop/settings/settings_reader.h"

namespace tessum {
namespace {

// The file's text; absent when it does not exist.
std::optional<std::string> readText(const std::string& path, const Files& files) {
  try {
    return readIfThere(files, path);
  } catch (const std::system_error& error) {
    throw SettingsError(error.what());
  }
}

constexpr std::string_view kTemplate =
    R"(# Settings of Tessum. A running recorder follows them as soon as this file is saved.
# Lines that begin with "#" have no effect. Those that show a setting show its default.
# Patterns are regular expressions in single quotes: 'Editor' matches any text that contains it,
# '^Editor$' that text alone, and '(?i)editor' ignores case.

[record]
# away-after = "5m"    # how long without input until you are away; or "never"
# titles = "each"      # a session for each title; or "last" of each activation, or "none"

[reports]
# day-starts = "00:00" # later, such as "04:00", the night belongs to the day before it

# What a rule hides is never recorded.

# Browsers name private windows in the title. This keeps the application but not the title.
[[hide]]
title = '(?i)private browsing|incognito|inprivate'
keep = "app"

# [[hide]]
# app = '^KeePassXC$'          # in the application's name or its identifier

# [[hide]]
# between = "18:00-08:00"      # hours that cross midnight belong to the day they begin on
# days = ["mon", "tue", "wed", "thu", "fri"]

# [[hide]]
# days = ["sat", "sun"]        # whole days

# Categories of what you do; the first that matches counts.

# [[category]]
# name = "Mail"
# title = '(?i)inbox'
# color = "#3a7bd5"            # on the page of "Tessum timeline"
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
