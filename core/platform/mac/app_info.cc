#include <CoreFoundation/CoreFoundation.h>

#include "core/platform/app_info.h"

namespace tessum {
namespace {

std::optional<std::string> textOf(CFStringRef value) {
  const CFIndex longest =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(value), kCFStringEncodingUTF8);
  std::string text(static_cast<std::size_t>(longest) + 1, '\0');
  const auto room = static_cast<CFIndex>(text.size());
  if (!CFStringGetCString(value, text.data(), room, kCFStringEncodingUTF8)) return std::nullopt;
  text.resize(text.find('\0'));
  return text;
}

}  // namespace

std::optional<std::string> SystemAppInfo::version() const {
  const CFBundleRef bundle = CFBundleGetMainBundle();
  if (bundle == nullptr) return std::nullopt;
  const CFTypeRef value =
      CFBundleGetValueForInfoDictionaryKey(bundle, CFSTR("CFBundleShortVersionString"));
  if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) return std::nullopt;
  return textOf(static_cast<CFStringRef>(value));
}

}  // namespace tessum
