/* measure: TessumMCP against its limit, over one history.
 *
 *   measure NAME TESSUM_MCP LIMIT_SERVER TESSUM_DATA LIMIT_DATA
 *
 * The two data folders hold copies of one history; annotations are written to both. Both servers
 * get the same requests in turn, so that other load on the computer affects both alike. We compare
 * the medians of elapsed time, which the goals refer to, and of processor time, which depends less
 * on other load. The answers must be the same, byte for byte. The table goes to standard output as
 * rows of Markdown. The status is 0 even when a goal is missed, because a busy computer misses
 * them, too.
 */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "benchmarks/contenders.h"
#include "benchmarks/measure_memory.h"
#include "benchmarks/requests.h"
#include "benchmarks/server_process.h"
#include "benchmarks/table.h"

enum { kMostRounds = 3000, kFewestRounds = 7 };

static const double kSecondsPerCase = 4;

static const char* timeText(char* out, size_t size, double microseconds) {
  if (microseconds < 1000) return format(out, size, "%.1f \xC2\xB5s", microseconds);
  return format(out, size, "%.2f ms", microseconds / 1000);
}

/* Microseconds of elapsed time, and of the server's processor time. */
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

/* Whether to continue after `round` rounds that began at `begin`. */
static int goesOn(size_t round, double begin) {
  if (round < kFewestRounds) return 1;
  return round < kMostRounds && nowInMicroseconds() - begin < kSecondsPerCase * 1e6;
}

/* The times of one case's rounds. */
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
  struct Server tessum = startContender(&tessumContender);
  struct Server limit = startContender(&limitContender);
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

static void spawnOnce(const struct Contender* contender, const char* request, struct Answer* answer,
                      struct Rounds* rounds, size_t round) {
  const double begin = nowInMicroseconds();
  struct Server server = startContender(contender);
  ask(&server, request, strlen(request), answer);
  rounds->wall[round] = nowInMicroseconds() - begin;
  rounds->processor[round] = processorTime(&server);
  stopServer(&server);
}

static void measureSpawn(const char* request) {
  const double begin = nowInMicroseconds();
  size_t round;
  for (round = 0; goesOn(round, begin); ++round) {
    spawnOnce(&tessumContender, request, &tessumAnswer, &tessumRounds, round);
    spawnOnce(&limitContender, request, &limitAnswer, &limitRounds, round);
    requireSameAnswers("spawn");
  }
  printTimes("spawn to first answer", medians(&tessumRounds, round), medians(&limitRounds, round),
             1.5);
}

static void measureUsage(const char* request) {
  struct Server tessum = startContender(&tessumContender);
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
  tessumContender.program = arguments[2];
  limitContender.program = arguments[3];
  tessumContender.data = arguments[4];
  limitContender.data = arguments[5];
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
