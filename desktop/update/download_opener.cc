#include "desktop/update/download_opener.h"

#include <string_view>
#include <utility>

#include "core/base/text.h"
#include "core/update/urls.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

bool isNameOfImage(std::string_view name) {
  return name.ends_with(".dmg") && validUtf8(name) == name && printable(name) == name;
}

}  // namespace

DownloadOpener::DownloadOpener(const UrlOpener& system, Quarantine mark)
    : system_(system), mark_(std::move(mark)) {}

void DownloadOpener::open(const std::string& url) const {
  const std::string path = filePath(url);
  const std::string_view name = std::string_view(path).substr(path.find_last_of('/') + 1);
  if (!isNameOfImage(name) || !mark_(path)) return;
  system_.open(url);
  opened_ = url;
}

}  // namespace tessum
