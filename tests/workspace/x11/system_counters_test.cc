#include "core/workspace/x11/system_counters.h"

#include <gtest/gtest.h>

#include <string>

namespace tessum {
namespace {

template <typename Number>
std::string bytesOf(Number number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

std::string counter(std::uint32_t number, const std::string& name) {
  std::string bytes = bytesOf(number) + std::string(8, '\x7F') +
                      bytesOf(static_cast<std::uint16_t>(name.size())) + name;
  while (bytes.size() % 4 != 0) bytes += '\0';
  return bytes;
}

TEST(CounterNamed, FindsNamesOfAllLengths) {
  for (const std::string before : {"", "S", "SE", "SERVERTIME", "DEVICEIDLETIME 12"}) {
    const std::string list = counter(1, before) + counter(2, "IDLETIME") + counter(3, "LAST");
    EXPECT_EQ(counterNamed("IDLETIME", list), 2U) << before;
    EXPECT_EQ(counterNamed("LAST", list), 3U) << before;
    EXPECT_EQ(counterNamed("IDLETIM", list), std::nullopt) << before;
  }
}

TEST(CounterNamed, EndsWhereTheListBreaksOff) {
  const std::string list = counter(1, "SERVERTIME") + counter(2, "IDLETIME");
  for (std::size_t size = 0; size < list.size() - 2; ++size) {  // its last two bytes fill it up
    EXPECT_EQ(counterNamed("IDLETIME", std::string_view(list).substr(0, size)), std::nullopt);
  }
  EXPECT_EQ(counterNamed("IDLETIME", std::string(12, '\0') + "\xFF\xFF"), std::nullopt);
}

}  // namespace
}  // namespace tessum
