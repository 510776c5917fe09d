#include "desktop/update/delivery.h"

namespace tessum {

Delivery systemDelivery() {
  return {.isDownload = true, .instruction = "Run \"Tessum update --download\" to fetch it."};
}

}  // namespace tessum
