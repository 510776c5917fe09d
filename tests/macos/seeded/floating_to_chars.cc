#include <charconv>

int main() {
  char text[32];
  return *std::to_chars(text, text + sizeof text, 0.5).ptr;
}
