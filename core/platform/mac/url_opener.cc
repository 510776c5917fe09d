#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

#include "core/platform/url_opener.h"

namespace tessum {
namespace {

struct Releaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <typename Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Releaser>;

}  // namespace

void SystemUrlOpener::open(const std::string& url) const {
  (void)hasOpened(url);  // failures are not reported
}

bool SystemUrlOpener::hasOpened(const std::string& url) const {
  const Owned<CFStringRef> text(
      CFStringCreateWithCString(kCFAllocatorDefault, url.c_str(), kCFStringEncodingUTF8));
  if (!text) return false;
  const Owned<CFURLRef> address(CFURLCreateWithString(kCFAllocatorDefault, text.get(), nullptr));
  return address && LSOpenCFURLRef(address.get(), nullptr) == noErr;
}

}  // namespace tessum
