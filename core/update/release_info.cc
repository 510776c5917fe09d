#include "core/update/release_info.h"

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/value.h"

namespace tessum {
namespace {

ReleaseAsset decodeAsset(const json::Field& asset) {
  return {.name = asset.required("name").text(),
          .size = asset.required("size").integer(),
          .contentType = asset.required("contentType").text()};
}

std::optional<std::vector<ReleaseAsset>> decodeAssets(const std::optional<json::Field>& list) {
  if (!list) return std::nullopt;
  std::vector<ReleaseAsset> assets;
  for (const json::Field& asset : list->elements()) assets.push_back(decodeAsset(asset));
  return assets;
}

}  // namespace

ReleaseInfo decodeReleaseInfo(std::string_view text) {
  const json::Value document = json::parse(text);
  const json::Field release(document);
  return {.tag = release.required("tag").text(),
          .name = release.required("name").text(),
          .body = release.required("body").text(),
          .prerelease = release.required("prerelease").boolean(),
          .publishedAt = release.required("publishedAt").text(),
          .assets = decodeAssets(release.optional("assets"))};
}

}  // namespace tessum
