/* Measures programs from their start to their end:
 *
 *   measure-programs ROUNDS PROGRAM ARGUMENT... [-- PROGRAM ARGUMENT...]
 *
 * They run in turns, so that other load affects them alike, and their output is discarded. Prints
 * the median of each in milliseconds, in one line. */

#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { kMostPrograms = 2 };

extern char** environ;

static void require(int isGood, const char* what) {
  if (isGood) return;
  fprintf(stderr, "measure-programs: %s\n", what);
  exit(1);
}

static double nowInMilliseconds(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec * 1e3 + (double)now.tv_nsec / 1e6;
}

static double runOnce(char** arguments) {
  posix_spawn_file_actions_t actions;
  require(posix_spawn_file_actions_init(&actions) == 0, "no memory");
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const double start = nowInMilliseconds();
  pid_t process = 0;
  require(posix_spawnp(&process, arguments[0], &actions, NULL, arguments, environ) == 0,
          "a program cannot be started");
  int status = 0;
  require(waitpid(process, &status, 0) == process, "a program is lost");
  const double end = nowInMilliseconds();
  require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "a program failed");
  posix_spawn_file_actions_destroy(&actions);
  return end - start;
}

static int compare(const void* a, const void* b) {
  const double first = *(const double*)a;
  const double second = *(const double*)b;
  return (first > second) - (first < second);
}

int main(int argc, char** argv) {
  require(argc >= 3, "usage: measure-programs ROUNDS PROGRAM ARGUMENT... [-- PROGRAM ...]");
  const int rounds = atoi(argv[1]);
  require(rounds > 0, "no rounds");
  char** programs[kMostPrograms];
  double* times[kMostPrograms];
  int count = 0;
  for (char** argument = argv + 2; *argument != NULL;) {
    require(count < kMostPrograms, "too many programs");
    programs[count] = argument;
    times[count] = calloc((size_t)rounds, sizeof(double));
    require(times[count] != NULL, "no memory");
    ++count;
    while (*argument != NULL && strcmp(*argument, "--") != 0) ++argument;
    if (*argument != NULL) *argument++ = NULL;
  }
  for (int i = 0; i < rounds; ++i) {
    for (int j = 0; j < count; ++j) times[j][i] = runOnce(programs[j]);
  }
  for (int j = 0; j < count; ++j) {
    qsort(times[j], (size_t)rounds, sizeof(double), compare);
    printf(j == 0 ? "%.2f" : " %.2f", times[j][rounds / 2]);
    free(times[j]);
  }
  printf("\n");
  return 0;
}
