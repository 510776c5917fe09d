#include "core/update/urls.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <system_error>

#include "core/base/check.h"

namespace tessum {
namespace {

constexpr std::string_view kFileScheme = "file://";

constexpr std::string_view kLettersAndDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

bool isLetterOrDigit(char c) {
  return kLettersAndDigits.find(c) != std::string_view::npos;
}

// Whether a URL's path may hold `c` as it is (RFC 3986). The slash separates its segments.
bool isPathCharacter(char c) {
  constexpr std::string_view kMarks = "-._~!$&'()*+,;=:@/";
  return isLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos;
}

void appendPercentEncoded(std::string& out, std::string_view path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char c : path) {
    if (isPathCharacter(c)) {
      out += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    out += '%';
    out += kDigits[byte >> 4];
    out += kDigits[byte & 15];
  }
}

// `base` and the path `component` with exactly one slash between them.
std::string appended(std::string_view base, std::string_view component) {
  while (base.ends_with('/')) base.remove_suffix(1);
  std::string url(base);
  url += '/';
  appendPercentEncoded(url, component);
  return url;
}

std::optional<unsigned> hexDigit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
  return std::nullopt;
}

// The byte that the percent sign at `at` and the two characters after it stand for; absent when
// they stand for none.
std::optional<char> encodedByte(std::string_view text, std::size_t at) {
  if (text[at] != '%' || text.size() - at < 3) return std::nullopt;
  const auto high = hexDigit(text[at + 1]);
  const auto low = hexDigit(text[at + 2]);
  if (!high || !low) return std::nullopt;
  return static_cast<char>(static_cast<unsigned char>(*high << 4 | *low));
}

bool isHostName(std::string_view host) {
  static constexpr std::string_view kMarks = "-._~";
  return !host.empty() && isLetterOrDigit(host.front()) &&
         std::all_of(host.begin(), host.end(), [](char c) {
           return isLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos;
         });
}

// Whether `host` looks like an IPv6 address in brackets: by its characters, and at least two
// colons.
bool isHostAddress(std::string_view host) {
  if (host.size() < 2 || !host.starts_with('[') || !host.ends_with(']')) return false;
  host = host.substr(1, host.size() - 2);
  return std::count(host.begin(), host.end(), ':') >= 2 &&
         std::all_of(host.begin(), host.end(),
                     [](char c) { return hexDigit(c).has_value() || c == ':' || c == '.'; });
}

// A colon and a number from 1 to 65535.
bool isPort(std::string_view text) {
  constexpr std::size_t kMostDigits = 5;
  std::uint16_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, number);
  return text.size() <= 1 + kMostDigits && stop == end && error == std::errc() && number > 0;
}

// No semicolon is allowed: it would separate two items of a list in CMake.
bool isBasePath(std::string_view path) {
  for (std::size_t at = 0; at < path.size(); ++at) {
    const bool isEncoded = encodedByte(path, at).has_value();
    if (!isEncoded && (!isPathCharacter(path[at]) || path[at] == ';')) return false;
    if (isEncoded) at += 2;
  }
  return true;
}

}  // namespace

// cmake/TessumUpdateUrls.cmake refuses the same texts when the build is configured.
bool isBaseUrl(std::string_view text) {
  constexpr std::string_view kScheme = "https://";
  if (!text.starts_with(kScheme)) return false;
  text.remove_prefix(kScheme.size());
  const std::string_view authority = text.substr(0, text.find('/'));
  const auto end = authority.starts_with('[') ? authority.find(']') + 1  // npos + 1 is 0
                                              : authority.find(':');
  const std::string_view host = authority.substr(0, end);
  const std::string_view port = authority.substr(host.size());
  return (isHostName(host) || isHostAddress(host)) && (port.empty() || isPort(port)) &&
         isBasePath(text.substr(authority.size()));
}

std::string latestReleaseUrl(std::string_view base) {
  return appended(base, "releases/macos/latest");
}

std::string assetUrl(std::string_view base, std::string_view tag, std::string_view name) {
  std::string component = "releases/macos/";
  component += tag;
  component += "/assets/";
  component += name;
  return appended(base, component);
}

std::string fileUrl(std::string_view path) {
  std::string url(kFileScheme);
  appendPercentEncoded(url, path);
  return url;
}

std::string filePath(std::string_view url) {
  TESSUM_CHECK(url.starts_with(kFileScheme), "a file URL is none");
  return percentDecoded(url.substr(kFileScheme.size()));
}

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = encodedByte(text, at);
    decoded += byte.value_or(text[at]);
    if (byte) at += 2;
  }
  return decoded;
}

}  // namespace tessum
