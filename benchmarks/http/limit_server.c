/* http-limit-server REQUEST_SIZE ANSWER_SIZE: a minimal server with one request per connection.
 * It reads REQUEST_SIZE bytes, sends ANSWER_SIZE fixed ones and closes. It prints its port and ends
 * when its standard input ends. */

#define _GNU_SOURCE /* accept4 */

#include <arpa/inet.h>
#include <errno.h>
#include <netinet/in.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

enum { kDescriptors = 4096, kEvents = 128 };

static size_t received[kDescriptors];

static void require(int isGood, const char* what) {
  if (isGood) return;
  perror(what);
  exit(1);
}

static void watch(int queue, int descriptor) {
  struct epoll_event event = {.events = EPOLLIN, .data = {.fd = descriptor}};
  require(epoll_ctl(queue, EPOLL_CTL_ADD, descriptor, &event) == 0, "epoll_ctl");
}

static int listenAnywhere(void) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  struct sockaddr_in address = {.sin_family = AF_INET};
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  require(bind(listener, (struct sockaddr*)&address, sizeof address) == 0, "bind");
  require(listen(listener, SOMAXCONN) == 0, "listen");
  socklen_t size = sizeof address;
  getsockname(listener, (struct sockaddr*)&address, &size);
  printf("%d\n", ntohs(address.sin_port));
  fflush(stdout);
  return listener;
}

static void acceptOne(int queue, int listener) {
  const int accepted = accept4(listener, NULL, NULL, SOCK_NONBLOCK);
  if (accepted == -1) return;
  require(accepted < kDescriptors, "too many connections");
  received[accepted] = 0;
  watch(queue, accepted);
}

int main(int argc, char** argv) {
  require(argc == 3, "usage");
  const size_t requestSize = strtoul(argv[1], NULL, 10);
  const size_t answerSize = strtoul(argv[2], NULL, 10);
  char* const answer = malloc(answerSize);
  memset(answer, 'x', answerSize);
  static char request[65536];

  const int listener = listenAnywhere();
  const int queue = epoll_create1(0);
  watch(queue, listener);
  watch(queue, STDIN_FILENO);
  for (;;) {
    struct epoll_event events[kEvents];
    const int count = epoll_wait(queue, events, kEvents, -1);
    for (int i = 0; i < count; ++i) {
      const int descriptor = events[i].data.fd;
      if (descriptor == STDIN_FILENO) return 0;
      if (descriptor == listener) {
        acceptOne(queue, listener);
        continue;
      }
      const ssize_t size = recv(descriptor, request, sizeof request, 0);
      if (size > 0) received[descriptor] += (size_t)size;
      if (size > 0 && received[descriptor] < requestSize) continue;
      if (size > 0) send(descriptor, answer, answerSize, MSG_NOSIGNAL);
      close(descriptor);
    }
  }
}
