#include "desktop/import/export_file.h"

#include "core/json/reader.h"
#include "desktop/import/json_pieces.h"

namespace tessum {
namespace {

// What a file has, of what tells the forms apart.
struct Traits {
  bool isArray = false;
  bool hasElements = false;
  bool hasSamples = false;
  bool hasBuckets = false;
  bool hasActivities = false;
  bool hasAnnotations = false;
};

BrokenFile noExport() {
  return BrokenFile(
      "it is no export of ActivityWatch, of arbtt-dump -t JSON, or of Tessum in JSON");
}

bool isSample(std::string_view text) {
  try {
    const json::Value value = json::parse(text);
    const auto* object = value.object();
    return object != nullptr && object->contains("date") && object->contains("windows");
  } catch (const json::DecodingError&) {
    return false;
  }
}

Traits traitsOf(const std::string& path) {
  Traits traits;
  readJsonPieces(path, {.isEntered =
                            [&](const JsonPath& place, bool isArray) {
                              if (place.empty()) {
                                traits.isArray = isArray;
                                return true;
                              }
                              const std::string& name = place.front();
                              if (place.size() > 1 || name.empty()) return false;
                              if (name == "buckets" && !isArray) traits.hasBuckets = true;
                              if (name == "activities" && isArray) traits.hasActivities = true;
                              if (name == "annotations" && isArray) traits.hasAnnotations = true;
                              return true;
                            },
                        .take =
                            [&](const JsonPath& place, std::string_view text) {
                              if (place.empty()) throw noExport();  // neither object nor array
                              if (!traits.isArray || place.size() != 1) return;
                              traits.hasElements = true;
                              if (!traits.hasSamples) traits.hasSamples = isSample(text);
                            }});
  return traits;
}

}  // namespace

std::unique_ptr<ExportFile> openExport(const std::string& path, std::optional<double> awayAfter) {
  const Traits traits = traitsOf(path);
  if (traits.isArray && (traits.hasSamples || !traits.hasElements)) {
    return makeSampleFile(path, awayAfter);
  }
  if (traits.hasBuckets) return makeBucketFile(path);
  if (traits.hasActivities && traits.hasAnnotations) return makeHistoryFile(path);
  throw noExport();
}

}  // namespace tessum
