// Decides which downloads are opened.

#pragma once

#include <functional>
#include <string>

#include "core/platform/url_opener.h"
#include "desktop/update/quarantine.h"

namespace tessum {

// Opens a disk image that was downloaded, where the system checks what is in it before it runs; no
// other file. The name of a download comes from the network: it must end in ".dmg", and hold no
// character that makes it look like another name. Main thread only.
class DownloadOpener final : public UrlOpener {
 public:
  using Quarantine = std::function<bool(const std::string& path)>;

  // `system` opens the image once `mark` has marked it. It must outlive this object.
  explicit DownloadOpener(const UrlOpener& system, Quarantine mark = quarantine);

  void open(const std::string& url) const override;

  // Whether the file at `url` was the last that was opened.
  [[nodiscard]] bool hasOpened(const std::string& url) const { return opened_ == url; }

 private:
  const UrlOpener& system_;
  const Quarantine mark_;
  mutable std::string opened_;
};

}  // namespace tessum
