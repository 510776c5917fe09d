/* http-measure SERVER LIMIT_SERVER FOLDER: sends the same requests to the HTTP server
 * and the limit server in turn, one per connection, and prints the time per request and the ratio.
 * Then it sends large bodies. FOLDER must be empty: the database is created there. An incomplete
 * answer ends the program with an error. */

#include <errno.h>
#include <netinet/in.h>
#include <signal.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { kMaxConnections = 64, kRounds = 7, kRequestsPerRound = 2000 };

static void require(int isGood, const char* what) {
  if (isGood) return;
  perror(what);
  exit(1);
}

static double now(void) {
  struct timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return (double)time.tv_sec * 1e6 + (double)time.tv_nsec / 1e3;
}

/* A server as a child process, which first prints its port, or a URL that contains it. */
struct Server {
  pid_t process;
  int input;
  int port;
};

static struct Server startServer(const char* const* arguments) {
  int input[2];
  int output[2];
  require(pipe(input) == 0 && pipe(output) == 0, "pipe");
  struct Server server = {.process = fork(), .input = input[1]};
  if (server.process == 0) {
    dup2(input[0], STDIN_FILENO);
    dup2(output[1], STDOUT_FILENO);
    close(input[1]);
    close(output[0]);
    execv(arguments[0], (char* const*)arguments);
    _exit(127);
  }
  close(input[0]);
  close(output[1]);
  char line[256] = "";
  const ssize_t size = read(output[0], line, sizeof line - 1);
  close(output[0]);
  require(size > 0, arguments[0]);
  const char* const colon = strrchr(line, ':');
  server.port = atoi(colon == NULL ? line : colon + 1);
  return server;
}

static void stopServer(struct Server* server) {
  close(server->input);
  int status = 0;
  waitpid(server->process, &status, 0);
  require(status == 0, "the server ended badly");
}

static long residentKilobytes(const struct Server* server) {
  char path[64];
  snprintf(path, sizeof path, "/proc/%d/statm", (int)server->process);
  FILE* const file = fopen(path, "r");
  long total = 0;
  long resident = 0;
  require(file != NULL && fscanf(file, "%ld %ld", &total, &resident) == 2, path);
  fclose(file);
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

static int openConnection(int port, int flags) {
  const int made = socket(AF_INET, SOCK_STREAM | flags, 0);
  struct sockaddr_in address = {.sin_family = AF_INET, .sin_port = htons((unsigned short)port)};
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int result = connect(made, (struct sockaddr*)&address, sizeof address);
  require(result == 0 || errno == EINPROGRESS, "connect");
  return made;
}

static void sendAll(int descriptor, const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t sent = send(descriptor, bytes, size, MSG_NOSIGNAL);
    require(sent > 0, "send");
    bytes += sent;
    size -= (size_t)sent;
  }
}

/* Makes one exchange; returns the size of the answer. */
static size_t exchange(int port, const char* request, size_t size) {
  const int connection = openConnection(port, 0);
  sendAll(connection, request, size);
  static char answer[1 << 20];
  size_t received = 0;
  ssize_t count = 0;
  while ((count = recv(connection, answer, sizeof answer, 0)) > 0) received += (size_t)count;
  require(count == 0 && received > 0, "the exchange failed");
  close(connection);
  return received;
}

/* Microseconds per request, with `connections` at a time. */
static double load(int port, int connections, const char* request, size_t size, size_t answerSize) {
  static size_t received[4096];
  const int queue = epoll_create1(0);
  int opened = 0;
  int finished = 0;
  const double start = now();
  while (finished < kRequestsPerRound) {
    while (opened < kRequestsPerRound && opened - finished < connections) {
      const int connection = openConnection(port, 0);
      sendAll(connection, request, size);
      received[connection] = 0;
      struct epoll_event event = {.events = EPOLLIN, .data = {.fd = connection}};
      epoll_ctl(queue, EPOLL_CTL_ADD, connection, &event);
      ++opened;
    }
    struct epoll_event events[kMaxConnections];
    const int count = epoll_wait(queue, events, kMaxConnections, 10000);
    require(count > 0, "no answer");
    for (int i = 0; i < count; ++i) {
      static char answer[1 << 20];
      const int connection = events[i].data.fd;
      const ssize_t taken = recv(connection, answer, sizeof answer, 0);
      require(taken >= 0, "the exchange failed");
      received[connection] += (size_t)taken;
      if (taken > 0) continue;
      require(received[connection] == answerSize, "the answer has another size");
      close(connection);
      ++finished;
    }
  }
  close(queue);
  return (now() - start) / kRequestsPerRound;
}

static int ascending(const void* a, const void* b) {
  const double difference = *(const double*)a - *(const double*)b;
  return difference < 0 ? -1 : difference > 0;
}

static double median(double* values, size_t count) {
  qsort(values, count, sizeof *values, ascending);
  return values[count / 2];
}

static size_t post(char* out, size_t capacity, const char* body) {
  return (size_t)snprintf(out, capacity,
                          "POST /mcp HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                          "application/json\r\nContent-Length: %zu\r\n\r\n%s",
                          strlen(body), body);
}

static void measureRequest(const struct Server* server, const char* limitProgram, const char* name,
                           const char* body) {
  char request[4096];
  const size_t size = post(request, sizeof request, body);
  const size_t answerSize = exchange(server->port, request, size);
  char sizes[2][32];
  snprintf(sizes[0], sizeof sizes[0], "%zu", size);
  snprintf(sizes[1], sizeof sizes[1], "%zu", answerSize);
  const char* const arguments[] = {limitProgram, sizes[0], sizes[1], NULL};
  struct Server limit = startServer(arguments);

  const int connections[] = {1, 8, 64};
  for (size_t c = 0; c < 3; ++c) {
    double times[kRounds];
    double limits[kRounds];
    for (int round = 0; round < kRounds; ++round) {
      times[round] = load(server->port, connections[c], request, size, answerSize);
      limits[round] = load(limit.port, connections[c], request, size, answerSize);
    }
    const double time = median(times, kRounds);
    const double least = median(limits, kRounds);
    printf("%-16s %6zu B  %2d at a time  %7.1f us  limit %7.1f us  ratio %.2f\n", name, answerSize,
           connections[c], time, least, time / least);
    fflush(stdout);
  }
  stopServer(&limit);
}

/* The body is white space, which costs the engine next to nothing. */
static void measureBody(const struct Server* server, size_t megabytes) {
  const size_t size = megabytes << 20;
  char head[128];
  const size_t headSize = (size_t)snprintf(
      head, sizeof head, "POST /mcp HTTP/1.1\r\nContent-Length: %zu\r\n\r\n", size);
  char* const request = malloc(headSize + size);
  memcpy(request, head, headSize);
  memset(request + headSize, ' ', size);
  double times[5];
  for (int i = 0; i < 5; ++i) {
    const double start = now();
    exchange(server->port, request, headSize + size);
    times[i] = now() - start;
  }
  free(request);
  const double time = median(times, 5);
  printf("body of %3zu MB  %8.1f ms  %6.2f ms/MB\n", megabytes, time / 1e3,
         time / 1e3 / (double)megabytes);
}

/* A hundred sessions of the last half hour. */
static void fillStore(const char* path) {
  sqlite3* store = NULL;
  require(sqlite3_open(path, &store) == SQLITE_OK, path);
  const char* const kInsert =
      "INSERT INTO activities (app_name, bundle_id, title, start_time, end_time)"
      " WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100)"
      " SELECT 'Editor', 'com.example.editor', 'chapter ' || i || '.txt',"
      " strftime('%s', 'now') - 10 * i, strftime('%s', 'now') - 10 * i + 9 FROM n";
  require(sqlite3_exec(store, kInsert, NULL, NULL, NULL) == SQLITE_OK, "sqlite3_exec");
  sqlite3_close(store);
}

int main(int argc, char** argv) {
  require(argc == 4, "usage: http-measure SERVER LIMIT_SERVER FOLDER");
  char path[4096];
  snprintf(path, sizeof path, "%s/activities.db", argv[3]);
  const char* const arguments[] = {argv[1], path, NULL};
  struct Server server = startServer(arguments);
  fillStore(path);

  measureRequest(&server, argv[2], "initialize",
                 "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"initialize\"}");
  measureRequest(&server, argv[2], "tools/list",
                 "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"tools/list\"}");
  measureRequest(&server, argv[2], "get_activities",
                 "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"tools/call\",\"params\":{\"name\":"
                 "\"get_activities\",\"arguments\":{}}}");
  printf("resident memory  %ld KB\n", residentKilobytes(&server));
  measureBody(&server, 5);
  measureBody(&server, 50);
  measureBody(&server, 200);
  printf("resident memory  %ld KB\n", residentKilobytes(&server));
  stopServer(&server);
  return 0;
}
