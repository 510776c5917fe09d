#include "desktop/settings/pause.h"

#include <filesystem>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/writer.h"
#include "core/platform/private_files.h"
#include "desktop/host/optional_file.h"
#include "desktop/periods/wall_clock.h"

namespace tessum {
namespace {

Pause readPause(const std::string& text) {
  Pause pause;
  try {
    const json::Value document = json::parse(text);
    if (const auto until = json::Field(document).optional("until")) pause.until = {until->real()};
  } catch (const json::DecodingError&) {
    // The pause then has no end.
  }
  return pause;
}

}  // namespace

std::string pausePath(const Locations& locations) {
  return locations.dataFolder() + "/pause.json";
}

std::optional<Pause> pauseAt(Date now, const Locations& locations, const Files& files) {
  const auto text = readIfThere(files, pausePath(locations));
  if (!text) return std::nullopt;
  const Pause pause = readPause(*text);
  if (pause.until && secondsBetween(now, *pause.until) <= 0) return std::nullopt;
  return pause;
}

void beginPause(const Pause& pause, const Locations& locations, const Files& files) {
  createPrivateFolders(locations.dataFolder());
  json::Value::Object object;
  if (pause.until) object["until"] = json::Value::real(pause.until->secondsSince1970);
  files.replace(pausePath(locations), json::compact(std::move(object)) + "\n");
}

void endPause(const Locations& locations) {
  std::filesystem::remove(pausePath(locations));
}

std::string pauseText(const Pause& pause, Date now) {
  if (!pause.until) return "until \"Tessum resume\"";
  const bool isToday = dateText(*pause.until) == dateText(now);
  return "until " + (isToday ? "" : dateText(*pause.until) + " ") + clockText(*pause.until);
}

}  // namespace tessum
