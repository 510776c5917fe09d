// Declared the way macOS declares what came later.

extern "C" __attribute__((availability(macos, introduced = 14.0))) int getpid();

int main() {
  return getpid();
}
