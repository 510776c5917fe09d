#include "desktop/update/quarantine.h"

#include <sys/xattr.h>

#include <cstdio>
#include <ctime>

namespace tessum {

// The attribute that browsers set on a download: flags, the time in seconds since 1970, both in
// hexadecimal, the name of the program, and the number of an event, which is left out.
bool quarantine(const std::string& path) {
  char value[64];
  const int size = std::snprintf(value, sizeof value, "0081;%08llx;Tessum;",
                                 static_cast<unsigned long long>(std::time(nullptr)));
  return setxattr(path.c_str(), "com.apple.quarantine", value, static_cast<std::size_t>(size), 0,
                  XATTR_NOFOLLOW) == 0;
}

}  // namespace tessum
