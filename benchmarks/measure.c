/* measure: TessumMCP beside its limit, over one history.
 *
 *   measure NAME TESSUM_MCP LIMIT_SERVER TESSUM_DATA LIMIT_DATA
 *
 * The two data folders hold copies of one history; annotations are written to both. Both servers
 * get the same requests in turns, so that whatever else the computer does hits them alike, and the
 * medians are compared: by the clock on the wall, which the goals mean, and of the processor's time
 * alone, which depends less on what else runs. The answers must be the same, byte for byte. The
 * table goes to standard output as rows of Markdown. The status is 0 also where a goal is missed: a
 * busy computer misses them, too.
 */

#define _GNU_SOURCE

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "benchmarks/server_process.h"

enum { kMostRounds = 3000, kFewestRounds = 7 };

static const double kSecondsPerCase = 4;

/* A cell without a figure. */
static const char kNone[] = "\xE2\x80\x93";

static const char* historyName;
static const char* tessumProgram;
static const char* limitProgram;
static const char* tessumData;
static const char* limitData;

static struct Answer tessumAnswer;
static struct Answer limitAnswer;

/* Rows of the table. */

static void printRow(const char* what, const char* tessum, const char* limit, double figure,
                     double goal, const char* unit, const char* processor) {
  printf("| %s | %s | %s | %s | %.2f%s | %.2f%s | %s | %s |\n", historyName, what, tessum, limit,
         figure, unit, goal, unit, figure <= goal ? "yes" : "no", processor);
  fflush(stdout);
}

static const char* format(char* out, size_t size, const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  vsnprintf(out, size, pattern, arguments);
  va_end(arguments);
  return out;
}

static const char* timeText(char* out, size_t size, double microseconds) {
  if (microseconds < 1000) return format(out, size, "%.1f \xC2\xB5s", microseconds);
  return format(out, size, "%.2f ms", microseconds / 1000);
}

/* Microseconds by the clock on the wall, and of the server's processor time alone. */
struct Times {
  double wall;
  double processor;
};

static void printTimes(const char* what, struct Times tessum, struct Times limit, double goal) {
  char tessumText[32];
  char limitText[32];
  char processorText[32];
  timeText(tessumText, sizeof tessumText, tessum.wall);
  timeText(limitText, sizeof limitText, limit.wall);
  format(processorText, sizeof processorText, "%.2f times", tessum.processor / limit.processor);
  printRow(what, tessumText, limitText, tessum.wall / limit.wall, goal, " times", processorText);
}

static int compareDoubles(const void* a, const void* b) {
  const double left = *(const double*)a;
  const double right = *(const double*)b;
  return (left > right) - (left < right);
}

static double median(double* values, size_t count) {
  qsort(values, count, sizeof *values, compareDoubles);
  return values[count / 2];
}

/* Whether to go on after `round` rounds that began at `begin`. */
static int goesOn(size_t round, double begin) {
  if (round < kFewestRounds) return 1;
  return round < kMostRounds && nowInMicroseconds() - begin < kSecondsPerCase * 1e6;
}

/* Requests. */

static void requireSameAnswers(const char* what) {
  const int isSame = tessumAnswer.size == limitAnswer.size &&
                     memcmp(tessumAnswer.bytes, limitAnswer.bytes, limitAnswer.size) == 0;
  if (isSame) return;
  fprintf(stderr, "measure: the answers differ: %s\n%.2000s\n%.2000s\n", what, tessumAnswer.bytes,
          limitAnswer.bytes);
  exit(1);
}

/* Where an answer tells the time of the day, the two may fall into different seconds: then they
 * are asked again. */
static void compareAnswers(struct Server* tessum, struct Server* limit, const char* what,
                           const char* request) {
  int attempt;
  for (attempt = 0; attempt < 5; ++attempt) {
    ask(tessum, request, strlen(request), &tessumAnswer);
    ask(limit, request, strlen(request), &limitAnswer);
    if (tessumAnswer.size == limitAnswer.size &&
        memcmp(tessumAnswer.bytes, limitAnswer.bytes, limitAnswer.size) == 0) {
      return;
    }
  }
  requireSameAnswers(what);
}

/* What the rounds of one case took. */
struct Rounds {
  double wall[kMostRounds];
  double processor[kMostRounds];
};

static struct Rounds tessumRounds;
static struct Rounds limitRounds;

static struct Times medians(struct Rounds* rounds, size_t count) {
  struct Times times;
  times.wall = median(rounds->wall, count);
  times.processor = median(rounds->processor, count);
  return times;
}

static void askOnce(struct Server* server, const char* request, struct Answer* answer,
                    struct Rounds* rounds, size_t round) {
  const double before = processorTime(server);
  rounds->wall[round] = ask(server, request, strlen(request), answer);
  rounds->processor[round] = processorTime(server) - before;
}

static void measureRequest(const char* what, const char* request, double goal) {
  struct Server tessum = startServer(tessumProgram, tessumData);
  struct Server limit = startServer(limitProgram, limitData);
  double begin;
  size_t round;

  compareAnswers(&tessum, &limit, what, request);
  begin = nowInMicroseconds();
  for (round = 0; goesOn(round, begin); ++round) {
    askOnce(&tessum, request, &tessumAnswer, &tessumRounds, round);
    askOnce(&limit, request, &limitAnswer, &limitRounds, round);
  }
  printTimes(what, medians(&tessumRounds, round), medians(&limitRounds, round), goal);
  stopServer(&tessum);
  stopServer(&limit);
}

static void spawnOnce(const char* program, const char* data, const char* request,
                      struct Answer* answer, struct Rounds* rounds, size_t round) {
  const double begin = nowInMicroseconds();
  struct Server server = startServer(program, data);
  ask(&server, request, strlen(request), answer);
  rounds->wall[round] = nowInMicroseconds() - begin;
  rounds->processor[round] = processorTime(&server);
  stopServer(&server);
}

static void measureSpawn(const char* request) {
  const double begin = nowInMicroseconds();
  size_t round;
  for (round = 0; goesOn(round, begin); ++round) {
    spawnOnce(tessumProgram, tessumData, request, &tessumAnswer, &tessumRounds, round);
    spawnOnce(limitProgram, limitData, request, &limitAnswer, &limitRounds, round);
    requireSameAnswers("spawn");
  }
  printTimes("spawn to first answer", medians(&tessumRounds, round), medians(&limitRounds, round),
             1.5);
}

static void measureUsage(const char* request) {
  struct Server tessum = startServer(tessumProgram, tessumData);
  const double begin = nowInMicroseconds();
  struct Times times;
  char wallText[32];
  char processorText[32];
  size_t round;
  for (round = 0; goesOn(round, begin); ++round) {
    askOnce(&tessum, request, &tessumAnswer, &tessumRounds, round);
  }
  times = medians(&tessumRounds, round);
  timeText(wallText, sizeof wallText, times.wall);
  timeText(processorText, sizeof processorText, times.processor);
  printRow("`get_app_usage`", wallText, kNone, times.wall / 1000, 3, " ms", processorText);
  stopServer(&tessum);
}

/* Memory. */

static double megabytes(size_t bytes) {
  return (double)bytes / 1e6;
}

static double mebibytes(size_t bytes) {
  return (double)bytes / (1 << 20);
}

static void measureMemoryAfterStart(const char* request) {
  struct Server tessum = startServer(tessumProgram, tessumData);
  struct Server limit = startServer(limitProgram, limitData);
  char tessumText[32];
  char limitText[32];
  double used;
  ask(&tessum, request, strlen(request), &tessumAnswer);
  ask(&limit, request, strlen(request), &limitAnswer);
  used = mebibytes(residentMemory(&tessum));
  printRow("memory after start", format(tessumText, sizeof tessumText, "%.2f MiB", used),
           format(limitText, sizeof limitText, "%.2f MiB", mebibytes(residentMemory(&limit))), used,
           6, " MiB", kNone);
  stopServer(&tessum);
  stopServer(&limit);
}

static void measureMemoryOfAnswer(void) {
  const double kWanted = 100e6;
  struct Server tessum = startServer(tessumProgram, tessumData);
  struct Server limit = startServer(limitProgram, limitData);
  char request[256];
  char tessumText[64];
  char limitText[64];
  char what[64];
  const char* pattern =
      "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"tools/call\",\"params\":{\"name\":"
      "\"search_activities\",\"arguments\":{\"query\":\"\",\"limit\":%d}}}\n";

  format(request, sizeof request, pattern, 1000);
  ask(&tessum, request, strlen(request), &tessumAnswer);
  format(request, sizeof request, pattern, (int)(kWanted / ((double)tessumAnswer.size / 1000)));
  compareAnswers(&tessum, &limit, "a large answer", request);
  /* Over a short history the answer is less than what a program takes anyway. */
  if (tessumAnswer.size >= 1000000) {
    format(what, sizeof what, "peak memory for an answer of %.0f MB", megabytes(tessumAnswer.size));
    printRow(what, format(tessumText, sizeof tessumText, "%.0f MB", megabytes(peakMemory(&tessum))),
             format(limitText, sizeof limitText, "%.0f MB", megabytes(peakMemory(&limit))),
             (double)peakMemory(&tessum) / (double)tessumAnswer.size, 3.5, " times", kNone);
  }
  stopServer(&tessum);
  stopServer(&limit);
}

/* A message of about `size` bytes: `head`, `body` again and again, `tail` and a line feed. */
static char* makeMessage(const char* head, const char* body, const char* tail, size_t size) {
  const size_t bodySize = strlen(body);
  const size_t count = size / bodySize;
  char* message = malloc(strlen(head) + count * bodySize + strlen(tail) + 2);
  char* at = message;
  size_t i;
  require(message != NULL, "out of memory");
  at = stpcpy(at, head);
  for (i = 0; i < count; ++i) at = stpcpy(at, body);
  at = stpcpy(at, tail);
  strcpy(at, "\n");
  return message;
}

#define REQUEST(method) "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"" method "\",\"params\":"
#define CALL(tool) REQUEST("tools/call") "{\"name\":\"" tool "\",\"arguments\":{"

static const struct {
  const char* what;
  const char* head;
  const char* body;
  const char* tail;
} kMessages[] = {
    {"one long text", CALL("search_activities") "\"query\":\"", "all work and no play ", "\"}}}"},
    {"one long annotation", CALL("annotate") "\"text\":\"", "all work/no play", "\"}}}"},
    {"escaped characters", CALL("search_activities") "\"query\":\"", "\\u0001\\n\\ud83d\\ude00",
     "\"}}}"},
    {"slashes in the method", "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"", "/", "\"}"},
    {"a long id", "{\"jsonrpc\":\"2.0\",\"method\":\"tools/list\",\"id\":\"", "/", "\"}"},
    {"a long number", REQUEST("tools/list"), "1", "}"},
    {"a long tool name", REQUEST("tools/call") "{\"name\":\"", "/", "\"}}"},
    {"a long resource name", REQUEST("resources/read") "{\"uri\":\"", "/", "\"}}"},
    {"open brackets", REQUEST("tools/list"), "[", "}"},
    {"open braces", REQUEST("tools/list"), "{\"\":", "}"},
    {"many empty arrays", CALL("get_activities") "\"date\":[", "[],", "[]]}}}"},
    {"many small numbers", CALL("get_activities") "\"date\":[", "1,", "1]}}}"},
    {"many equal keys", CALL("get_activities"), "\"limit\":1,", "\"limit\":1}}}"},
    {"many empty objects", CALL("get_activities") "\"date\":[", "{},", "{}]}}}"},
    {"commas", "", ",", ""},
    {"quotation marks", "", "\"", ""},
    {"bytes that are not UTF-8", "", "\x80\xFF", ""},
    {"blanks", "", " ", ""},
};

/* Each message gets a server of its own; the one that takes most is printed. */
static void measureMemoryOfMessages(void) {
  const size_t kSize = 32u << 20;
  double most = 0;
  size_t mostPeak = 0;
  const char* mostWhat = "";
  char what[128];
  char text[32];
  size_t i;
  for (i = 0; i < sizeof kMessages / sizeof *kMessages; ++i) {
    struct Server tessum = startServer(tessumProgram, tessumData);
    char* message = makeMessage(kMessages[i].head, kMessages[i].body, kMessages[i].tail, kSize);
    const size_t size = strlen(message);
    double times;
    ask(&tessum, message, size, &tessumAnswer);
    times = (double)peakMemory(&tessum) / (double)size;
    fprintf(stderr, "measure: message of %.0f MB, %s: peak %.2f times\n", megabytes(size),
            kMessages[i].what, times);
    if (times > most) {
      most = times;
      mostPeak = peakMemory(&tessum);
      mostWhat = kMessages[i].what;
    }
    free(message);
    stopServer(&tessum);
  }
  format(what, sizeof what, "peak memory for a message of %.0f MB (worst: %s)", megabytes(kSize),
         mostWhat);
  printRow(what, format(text, sizeof text, "%.0f MB", megabytes(mostPeak)), kNone, most, 16,
           " times", kNone);
}

static const char* yesterday(char* out, size_t size) {
  time_t now = time(NULL);
  struct tm date = *localtime(&now);
  date.tm_mday -= 1;
  date.tm_hour = 12;
  date.tm_isdst = -1;
  now = mktime(&date);
  strftime(out, size, "%Y-%m-%d", localtime(&now));
  return out;
}

int main(int count, char** arguments) {
  static const char kInitialize[] = REQUEST("initialize") "{}}\n";
  char day[16];
  char request[256];
  require(count == 6, "usage: measure NAME TESSUM_MCP LIMIT_SERVER TESSUM_DATA LIMIT_DATA");
  historyName = arguments[1];
  tessumProgram = arguments[2];
  limitProgram = arguments[3];
  tessumData = arguments[4];
  limitData = arguments[5];
  yesterday(day, sizeof day);

  format(request, sizeof request, CALL("get_activities") "\"date\":\"%s\"}}}\n", day);
  measureRequest("`get_activities`", request, 1.1);
  measureRequest("`search_activities`", CALL("search_activities") "\"query\":\"moisture\"}}}\n",
                 1.1);
  measureRequest("`search_activities`, nothing found",
                 CALL("search_activities") "\"query\":\"no such words\"}}}\n", 1.1);
  measureRequest("an answer of 100,000 sessions, or all",
                 CALL("search_activities") "\"query\":\"\",\"limit\":100000}}}\n", 2.0);
  measureRequest("`initialize`", kInitialize, 2.0);
  measureRequest("`tools/list`", REQUEST("tools/list") "{}}\n", 2.0);
  measureSpawn(kInitialize);
  format(request, sizeof request, CALL("get_app_usage") "\"date\":\"%s\"}}}\n", day);
  measureUsage(request);
  measureRequest("`annotate`", CALL("annotate") "\"text\":\"Measuring\"}}}\n", 1.05);
  measureMemoryAfterStart(kInitialize);
  measureMemoryOfAnswer();
  measureMemoryOfMessages();
  return 0;
}
