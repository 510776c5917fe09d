// What "Tessum export --format json" writes.

#include "core/json/reader.h"
#include "desktop/import/export_file.h"
#include "desktop/import/json_pieces.h"

namespace tessum {
namespace {

class HistoryFile final : public ExportFile {
 public:
  explicit HistoryFile(std::string path) : path_(std::move(path)) {}

  void visit(const ImportVisitor& visitor) override {
    const auto isEntered = [](const JsonPath& place, bool isArray) {
      return place.empty() || (place.size() == 1 && isArray);
    };
    const auto take = [&](const JsonPath& place, std::string_view text) {
      if (place.size() != 2) return;
      try {
        const json::Value value = json::parse(text);
        if (place.front() == "activities") visitor.session(activityFromJson(value));
        if (place.front() == "annotations") visitor.note(annotationFromJson(value));
      } catch (const json::DecodingError&) {
        visitor.broken();
      }
    };
    readJsonPieces(path_, {.isEntered = isEntered, .take = take});
  }

 private:
  std::string path_;
};

}  // namespace

std::unique_ptr<ExportFile> makeHistoryFile(const std::string& path) {
  return std::make_unique<HistoryFile>(path);
}

}  // namespace tessum
