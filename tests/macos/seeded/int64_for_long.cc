// Both are 64 bits wide, but on macOS int64_t is another type: long long.

#include <cstdint>

void set(long* place) {
  *place = 0;
}

int main() {
  std::int64_t number = 1;
  set(&number);
  return number == 0;
}
