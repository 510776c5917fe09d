#include <sys/epoll.h>

int main() {
  return epoll_create1(0);
}
