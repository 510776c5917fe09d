/* A server as a child process, driven through its pipes. */

#ifndef BENCHMARKS_SERVER_PROCESS_H_
#define BENCHMARKS_SERVER_PROCESS_H_

#include <stddef.h>
#include <sys/types.h>

struct Server {
  pid_t process;
  int input;  /* the end to write to */
  int output; /* the end to read from */
};

/* A reusable buffer for one answer; initialize with zeros. */
struct Answer {
  char* bytes; /* without the line feed */
  size_t size;
  size_t capacity;
};

/* Every failure ends the program with a message. */

/* Starts `program` with its data below `dataHome`. */
struct Server startServer(const char* program, const char* dataHome);

/* Closes the server's input and waits for it to exit, which must succeed. */
void stopServer(struct Server* server);

/* Sends `size` bytes of one message, which ends with a line feed, and reads the answer. Returns
 * the microseconds from the first byte sent to the last byte read. */
double ask(struct Server* server, const char* message, size_t size, struct Answer* answer);

/* Bytes of memory: in use now, and the peak since the start. */
size_t residentMemory(const struct Server* server);
size_t peakMemory(const struct Server* server);

/* The server's processor time since its start, system calls included, in microseconds. */
double processorTime(const struct Server* server);

/* Microseconds from a fixed moment. */
double nowInMicroseconds(void);

/* Ends the program with a message unless `isGood`. */
void require(int isGood, const char* what);

#endif
