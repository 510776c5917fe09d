#include "desktop/update/delivery.h"

namespace tessum {

// A release has a disk image for macOS only.
Delivery systemDelivery() {
  return {.isDownload = false,
          .instruction =
              "Get its package where this one came from, or make it from the sources; "
              "docs/PACKAGES.md says how."};
}

}  // namespace tessum
