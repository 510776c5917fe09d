#include "benchmarks/contenders.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct Contender tessumContender;
struct Contender limitContender;
struct Answer tessumAnswer;
struct Answer limitAnswer;

struct Server startContender(const struct Contender* contender) {
  return startServer(contender->program, contender->data);
}

static int areSameAnswers(void) {
  return tessumAnswer.size == limitAnswer.size &&
         memcmp(tessumAnswer.bytes, limitAnswer.bytes, limitAnswer.size) == 0;
}

void requireSameAnswers(const char* what) {
  if (areSameAnswers()) return;
  fprintf(stderr, "measure: the answers differ: %s\n%.2000s\n%.2000s\n", what, tessumAnswer.bytes,
          limitAnswer.bytes);
  exit(1);
}

/* Answers that contain the current time may fall into different seconds; both servers are then
 * asked again. */
void compareAnswers(struct Server* tessum, struct Server* limit, const char* what,
                    const char* request) {
  int attempt;
  for (attempt = 0; attempt < 5; ++attempt) {
    ask(tessum, request, strlen(request), &tessumAnswer);
    ask(limit, request, strlen(request), &limitAnswer);
    if (areSameAnswers()) return;
  }
  requireSameAnswers(what);
}
