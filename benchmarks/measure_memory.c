#define _GNU_SOURCE /* stpcpy */

#include "benchmarks/measure_memory.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "benchmarks/contenders.h"
#include "benchmarks/requests.h"
#include "benchmarks/table.h"

static double megabytes(size_t bytes) {
  return (double)bytes / 1e6;
}

static double mebibytes(size_t bytes) {
  return (double)bytes / (1 << 20);
}

void measureMemoryAfterStart(const char* request) {
  struct Server tessum = startContender(&tessumContender);
  struct Server limit = startContender(&limitContender);
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

void measureMemoryOfAnswer(void) {
  const double kWanted = 100e6;
  struct Server tessum = startContender(&tessumContender);
  struct Server limit = startContender(&limitContender);
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
  /* For a short history the answer is smaller than the program itself. */
  if (tessumAnswer.size >= 1000000) {
    format(what, sizeof what, "peak memory for an answer of %.0f MB", megabytes(tessumAnswer.size));
    printRow(what, format(tessumText, sizeof tessumText, "%.0f MB", megabytes(peakMemory(&tessum))),
             format(limitText, sizeof limitText, "%.0f MB", megabytes(peakMemory(&limit))),
             (double)peakMemory(&tessum) / (double)tessumAnswer.size, 3.5, " times", kNone);
  }
  stopServer(&tessum);
  stopServer(&limit);
}

/* A message of about `size` bytes: `head`, `body` repeatedly, `tail` and a line feed. */
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

void measureMemoryOfMessages(void) {
  const size_t kSize = 32u << 20;
  double most = 0;
  size_t mostPeak = 0;
  const char* mostWhat = "";
  char what[128];
  char text[32];
  size_t i;
  for (i = 0; i < sizeof kMessages / sizeof *kMessages; ++i) {
    struct Server tessum = startContender(&tessumContender);
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
