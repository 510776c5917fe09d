#define _GNU_SOURCE

#include "benchmarks/server_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

void require(int isGood, const char* what) {
  if (isGood) return;
  fprintf(stderr, "measure: %s\n", what);
  exit(1);
}

static double readClock(clockid_t clock) {
  struct timespec time;
  require(clock_gettime(clock, &time) == 0, "cannot read a clock");
  return (double)time.tv_sec * 1e6 + (double)time.tv_nsec / 1e3;
}

double nowInMicroseconds(void) {
  return readClock(CLOCK_MONOTONIC);
}

double processorTime(const struct Server* server) {
  clockid_t clock;
  require(clock_getcpuclockid(server->process, &clock) == 0, "no clock of the server");
  return readClock(clock);
}

struct Server startServer(const char* program, const char* dataHome) {
  struct Server server;
  int input[2];
  int output[2];
  posix_spawn_file_actions_t actions;
  char* arguments[2] = {(char*)program, NULL};

  signal(SIGPIPE, SIG_IGN);
  require(setenv("XDG_DATA_HOME", dataHome, 1) == 0, "cannot set XDG_DATA_HOME");
  require(pipe2(input, O_CLOEXEC) == 0 && pipe2(output, O_CLOEXEC) == 0, "cannot make a pipe");
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  require(posix_spawn(&server.process, program, &actions, NULL, arguments, environ) == 0, program);
  posix_spawn_file_actions_destroy(&actions);
  close(input[0]);
  close(output[1]);
  server.input = input[1];
  server.output = output[0];
  return server;
}

void stopServer(struct Server* server) {
  int status = 0;
  close(server->input);
  require(waitpid(server->process, &status, 0) == server->process, "cannot wait for the server");
  close(server->output);
  require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "a server ended badly");
}

static void sendAll(int descriptor, const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t count = write(descriptor, bytes, size);
    require(count > 0, "the server does not read");
    bytes += count;
    size -= (size_t)count;
  }
}

static void makeRoom(struct Answer* answer) {
  if (answer->size < answer->capacity) return;
  answer->capacity = answer->capacity == 0 ? 1 << 20 : 2 * answer->capacity;
  answer->bytes = realloc(answer->bytes, answer->capacity);
  require(answer->bytes != NULL, "out of memory");
}

double ask(struct Server* server, const char* message, size_t size, struct Answer* answer) {
  const double begin = nowInMicroseconds();
  sendAll(server->input, message, size);
  answer->size = 0;
  do {
    ssize_t count;
    makeRoom(answer);
    count = read(server->output, answer->bytes + answer->size, answer->capacity - answer->size);
    require(count > 0, "the server does not answer");
    answer->size += (size_t)count;
  } while (answer->bytes[answer->size - 1] != '\n');
  answer->size -= 1;
  return nowInMicroseconds() - begin;
}

/* A line of /proc/PID/status, such as "VmRSS:     5124 kB". */
static size_t memoryOf(const struct Server* server, const char* name) {
  char path[64];
  char line[256];
  size_t kilobytes = 0;
  FILE* status;
  snprintf(path, sizeof path, "/proc/%d/status", (int)server->process);
  status = fopen(path, "re");
  require(status != NULL, path);
  while (fgets(line, sizeof line, status) != NULL) {
    if (strncmp(line, name, strlen(name)) == 0) {
      require(sscanf(line + strlen(name), " %zu", &kilobytes) == 1, path);
    }
  }
  fclose(status);
  require(kilobytes > 0, path);
  return kilobytes * 1024;
}

size_t residentMemory(const struct Server* server) {
  return memoryOf(server, "VmRSS:");
}

size_t peakMemory(const struct Server* server) {
  return memoryOf(server, "VmHWM:");
}
