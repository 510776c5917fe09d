#include "desktop/update/quarantine.h"

#include <sys/xattr.h>

#include <cstdio>
#include <ctime>

namespace tessum {

// The attribute that browsers set on a download: flags and the time in seconds since 1970, both in
// hexadecimal, the program's name, and an event number, which we leave empty.
bool quarantine(const std::string& path) {
  char value[64];
  const int size = std::snprintf(value, sizeof value, "0081;%08llx;Tessum;",
                                 static_cast<unsigned long long>(std::time(nullptr)));
  return setxattr(path.c_str(), "com.apple.quarantine", value, static_cast<std::size_t>(size), 0,
                  XATTR_NOFOLLOW) == 0;
}

}  // namespace tessum
