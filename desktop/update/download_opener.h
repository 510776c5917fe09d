// Decides which downloads are opened.

#pragma once

#include <functional>
#include <string>

#include "core/platform/url_opener.h"
#include "desktop/update/quarantine.h"

namespace tessum {

// Opens a downloaded disk image if the system checks its programs before they run; opens no other
// file. The name of a download comes from the network, so it must end in ".dmg" and contain no
// character that could disguise it. Main thread only.
class DownloadOpener final : public UrlOpener {
 public:
  using Quarantine = std::function<bool(const std::string& path)>;

  // `mark` marks an image for that check; then `system`, which must outlive this object, opens it.
  explicit DownloadOpener(const UrlOpener& system, Quarantine mark = quarantine);

  void open(const std::string& url) const override;

  // Whether the file at `url` is the last one that open() passed to the system.
  [[nodiscard]] bool hasOpened(const std::string& url) const { return opened_ == url; }

 private:
  const UrlOpener& system_;
  const Quarantine mark_;
  mutable std::string opened_;
};

}  // namespace tessum
