#include "core/update/urls.h"

namespace tessum {

std::vector<std::string> configuredBaseUrls() {
  std::vector<std::string> urls;
  for (const char* url : {TESSUM_UPDATE_PRIMARY_URL, TESSUM_UPDATE_FALLBACK_URL}) {
    if (*url != '\0') urls.emplace_back(url);
  }
  return urls;
}

}  // namespace tessum
