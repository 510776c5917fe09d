#include "desktop/endpoint/admission.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "core/base/text.h"
#include "core/http/http_headers.h"

namespace tessum {
namespace {

constexpr std::string_view kHosts[] = {"localhost", "127.0.0.1", "[::1]"};
constexpr std::string_view kScheme = "http://";

bool isOurHost(std::string_view text, std::uint16_t port) {
  const std::string host = lowerCaseAscii(text);
  return std::any_of(std::begin(kHosts), std::end(kHosts), [&](std::string_view ours) {
    return host == std::string(ours) + ":" + std::to_string(port);
  });
}

bool isOurOrigin(std::string_view text, std::uint16_t port) {
  return text.starts_with(kScheme) && isOurHost(text.substr(kScheme.size()), port);
}

}  // namespace

std::optional<std::string> refusalOf(const HTTPVisitor& visitor) {
  if (!visitor.isOnThisComputer) return "Only programs on this computer are answered.";
  const auto hosts = headerValues(visitor.head, "host:");
  if (hosts.size() != 1 || !isOurHost(hosts.front(), visitor.port)) {
    return "Only requests to localhost, 127.0.0.1 or [::1] with the port are answered.";
  }
  const auto origins = headerValues(visitor.head, "origin:");
  const auto isOurs = [&](std::string_view origin) { return isOurOrigin(origin, visitor.port); };
  if (!std::all_of(origins.begin(), origins.end(), isOurs)) return "Web pages are not answered.";
  return std::nullopt;
}

HTTPAdmission admissionOfThisComputer() {
  return {.refusal = refusalOf,
          .patienceSeconds = kEndpointPatienceSeconds,
          .mostConnections = kMostEndpointConnections,
          .mostHeadBytes = kMostEndpointHeadBytes};
}

}  // namespace tessum
