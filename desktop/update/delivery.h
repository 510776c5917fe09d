// How a newer release reaches this system.

#pragma once

namespace tessum {

struct Delivery {
  bool isDownload = false;       // whether Tessum downloads the release's disk image
  const char* instruction = "";  // what a person does to get it; a sentence
};

// The way of this system.
[[nodiscard]] Delivery systemDelivery();

}  // namespace tessum
