// Close to every error, without any of them.

#import <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <charconv>
#include <cstdint>
#include <thread>

extern "C" __attribute__((availability(macos, introduced = 13.0))) int close(int);

int main() {
  int ends[2];
  if (pipe(ends) != 0) return 1;
  pthread_setname_np("worker");
  std::thread worker([] {});
  worker.join();
  char text[32];
  std::to_chars(text, text + sizeof text, std::int64_t{1});
  NSRunningApplication* application = NSWorkspace.sharedWorkspace.frontmostApplication;
  CFRunLoopStop(CFRunLoopGetMain());
  close(ends[0]);
  return accept(ends[1], nullptr, nullptr) + application.processIdentifier;
}
