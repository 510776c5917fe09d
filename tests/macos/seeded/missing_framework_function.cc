// Declared here, as a wrong header would, and exported by no framework.

#include <CoreFoundation/CoreFoundation.h>

extern "C" CFRunLoopRef CFRunLoopGetSecond();

int main() {
  return CFRunLoopGetSecond() == nullptr;
}
