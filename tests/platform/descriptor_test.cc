#include "core/platform/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <thread>

namespace tessum {
namespace {

TEST(WriteAll, WritesWhatTheSystemTakesInPieces) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);
  std::string received;
  std::thread reader([&] {
    char buffer[1000];
    ssize_t count = 0;
    while ((count = read(readEnd.number(), buffer, sizeof buffer)) > 0) {
      received.append(buffer, static_cast<std::size_t>(count));
    }
  });
  const std::string bytes = std::string("a\0b", 3) + std::string(1'000'000, 'x');
  EXPECT_EQ(writeAll(writeEnd.number(), bytes), 0);
  EXPECT_EQ(writeEnd.close(), 0);
  reader.join();
  EXPECT_EQ(received, bytes);
}

TEST(WriteAll, SaysWhyItCannot) {
  EXPECT_EQ(writeAll(-1, "bytes"), -1);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(writeAll(-1, ""), 0) << "there was nothing to write";
}

TEST(Retried, MakesAnInterruptedCallAgain) {
  int calls = 0;
  errno = EINTR;
  EXPECT_EQ(retried([&] { return ++calls < 3 ? -1 : 7; }), 7);
  EXPECT_EQ(calls, 3);
  errno = EIO;
  EXPECT_EQ(retried([&] { return ++calls < 6 ? -1 : 7; }), -1);
  EXPECT_EQ(calls, 4);
}

}  // namespace
}  // namespace tessum
