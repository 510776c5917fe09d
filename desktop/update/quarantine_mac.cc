#include "desktop/update/quarantine.h"

#include <sys/xattr.h>

#include <cstdio>
#include <ctime>

namespace tessum {

// The attribute that browsers give to what they download: flags that say "downloaded" and "not yet
// approved", the time in seconds since 1970, both hexadecimal, the program, and no event's number.
bool quarantine(const std::string& path) {
  char value[64];
  const int size = std::snprintf(value, sizeof value, "0081;%08llx;Tessum;",
                                 static_cast<unsigned long long>(std::time(nullptr)));
  return setxattr(path.c_str(), "com.apple.quarantine", value, static_cast<std::size_t>(size), 0,
                  XATTR_NOFOLLOW) == 0;
}

}  // namespace tessum
