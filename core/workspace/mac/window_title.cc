#include "core/workspace/mac/window_title.h"

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace tessum {
namespace {

struct Release {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

// How long each query may block the main thread when an application does not respond.
constexpr float kPatienceSeconds = 1;

// Null unless the call succeeds and returns a value.
Owned<CFTypeRef> copyAttribute(AXUIElementRef element, CFStringRef name) {
  AXUIElementSetMessagingTimeout(element, kPatienceSeconds);
  CFTypeRef value = nullptr;
  if (AXUIElementCopyAttributeValue(element, name, &value) != kAXErrorSuccess) return nullptr;
  return Owned<CFTypeRef>(value);
}

// A title may contain a zero byte, so its end comes from its length.
std::optional<std::string> utf8Of(CFStringRef text) {
  const CFRange all{0, CFStringGetLength(text)};
  constexpr UInt8 kInsteadOfLoneSurrogates = '?';
  CFIndex size = 0;
  CFStringGetBytes(text, all, kCFStringEncodingUTF8, kInsteadOfLoneSurrogates, false, nullptr, 0,
                   &size);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  const CFIndex converted =
      CFStringGetBytes(text, all, kCFStringEncodingUTF8, kInsteadOfLoneSurrogates, false,
                       reinterpret_cast<UInt8*>(bytes.data()), size, nullptr);
  if (converted != all.length) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<std::string> focusedWindowTitleOf(std::int32_t process) {
  const Owned<AXUIElementRef> application(AXUIElementCreateApplication(process));
  if (!application) return std::nullopt;
  const auto window = copyAttribute(application.get(), kAXFocusedWindowAttribute);
  if (!window) return std::nullopt;
  const auto title = copyAttribute(static_cast<AXUIElementRef>(window.get()), kAXTitleAttribute);
  if (!title || CFGetTypeID(title.get()) != CFStringGetTypeID()) return std::nullopt;
  return utf8Of(static_cast<CFStringRef>(title.get()));
}

}  // namespace tessum
