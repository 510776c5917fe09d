// A host without IPv6, simulated by a filter on system calls. Linux only.

#include <gtest/gtest.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>

#include "core/http/http_transport.h"
#include "tests/http/forked_child.h"
#include "tests/http/loopback.h"

namespace tessum {
namespace {

// From now on this process cannot make IPv6 sockets. Values are little-endian: the first argument's
// low half comes first.
bool forbidIPv6() {
  sock_filter instructions[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_INET6, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EAFNOSUPPORT),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{static_cast<unsigned short>(std::size(instructions)), instructions};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0 &&
         socket(AF_INET6, SOCK_STREAM, 0) == -1;
}

TEST(HTTPTransportWithoutIPv6, AnswersIPv4) {
  const std::uint16_t port = freePort();
  ForkedChild child([&](ForkedChild::Link& parent) {
    if (!forbidIPv6()) return;
    ThreadQueue queue("com.example.child");
    HTTPTransport transport(
        queue, [](json::PaddedView) -> std::optional<std::string> { return "served"; });
    transport.listen(port);
    parent.report(transport.listeningError().value());
    parent.waitUntilReleased();
  });
  const auto error = child.reported();
  if (!error) GTEST_SKIP() << "this system filters no calls";
  EXPECT_EQ(*error, 0);
  EXPECT_EQ(ask(port, postOf("{}")), jsonAnswer("served"));
  EXPECT_FALSE(isListening(port, Family::v6));
  EXPECT_EQ(child.release(), 0);
}

}  // namespace
}  // namespace tessum
