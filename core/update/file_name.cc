#include "core/update/file_name.h"

#include <algorithm>
#include <cstddef>

#include "core/base/text.h"
#include "core/update/urls.h"

namespace tessum {
namespace {

constexpr std::string_view kDefaultName = "Tessum.dmg";

// The shortest limit among the file systems in use.
constexpr std::size_t kLongestName = 255;

// Removes the first parameter and the semicolon after it from `rest`. Gives the parameter. A
// semicolon within quotes belongs to the parameter.
std::string_view takeParameter(std::string_view& rest) {
  bool isQuoted = false;
  std::size_t end = 0;
  for (; end < rest.size() && (isQuoted || rest[end] != ';'); ++end) {
    if (rest[end] == '"') isQuoted = !isQuoted;
    if (rest[end] == '\\' && isQuoted && end + 1 < rest.size()) ++end;
  }
  const std::string_view parameter = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return parameter;
}

// The value of the last parameter called `name` in the value of a header; absent when there is
// none. `name` is in lower case.
std::optional<std::string_view> parameter(std::string_view header, std::string_view name) {
  std::optional<std::string_view> value;
  takeParameter(header);  // the type of disposition
  while (!header.empty()) {
    const std::string_view text = takeParameter(header);
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) continue;
    if (lowerCaseAscii(trimBlanks(text.substr(0, equals))) == name)
      value = trimBlanks(text.substr(equals + 1));
  }
  return value;
}

// Gives a token as it is, and a quoted string without its quotes and backslashes.
std::string unquoted(std::string_view value) {
  if (!value.starts_with('"')) return std::string(value);
  std::string text;
  for (std::size_t at = 1; at < value.size() && value[at] != '"'; ++at) {
    if (value[at] == '\\' && at + 1 < value.size()) ++at;
    text += value[at];
  }
  return text;
}

// The text of an extended value such as UTF-8'en'%C3%A9.dmg; absent when it has another form or a
// character set other than the two that RFC 5987 names.
std::optional<std::string> extendedText(std::string_view value) {
  const auto first = value.find('\'');
  if (first == std::string_view::npos) return std::nullopt;
  const auto second = value.find('\'', first + 1);
  if (second == std::string_view::npos) return std::nullopt;
  const std::string characterSet = lowerCaseAscii(value.substr(0, first));
  std::string text = percentDecoded(value.substr(second + 1));
  if (characterSet == "utf-8") return text;
  if (characterSet == "iso-8859-1") return utf8FromLatin1(text);
  return std::nullopt;
}

std::optional<std::string> nameInHeader(std::string_view header) {
  if (const auto extended = parameter(header, "filename*")) {
    if (auto name = extendedText(*extended)) return name;
  }
  const auto plain = parameter(header, "filename");
  return plain ? std::optional(unquoted(*plain)) : std::nullopt;
}

std::string nameInUrl(std::string_view url) {
  url = url.substr(0, url.find_first_of("?#"));
  return percentDecoded(url.substr(url.find_last_of('/') + 1));  // npos + 1 is 0
}

// Whether a name may hold `c`: no separator, and nothing that a terminal would act on.
bool isNameCharacter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte != 0x7F && c != '/';
}

// A name with a leading dot would be hidden, and "." and ".." are folders.
bool isPlainName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName && !name.starts_with('.') &&
         std::all_of(name.begin(), name.end(), isNameCharacter);
}

}  // namespace

std::string suggestedFileName(std::string_view url,
                              const std::optional<std::string>& contentDisposition) {
  auto suggestion = contentDisposition ? nameInHeader(*contentDisposition) : std::nullopt;
  if (!suggestion) suggestion = nameInUrl(url);
  const std::string name = validUtf8(*suggestion);
  return isPlainName(name) ? name : std::string(kDefaultName);
}

}  // namespace tessum
