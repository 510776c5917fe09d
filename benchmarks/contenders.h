/* Sends TessumMCP and its limit the same requests, over copies of one history. */

#ifndef BENCHMARKS_CONTENDERS_H_
#define BENCHMARKS_CONTENDERS_H_

#include "benchmarks/server_process.h"

/* A program and its data folder. */
struct Contender {
  const char* program;
  const char* data;
};

extern struct Contender tessumContender;
extern struct Contender limitContender;

/* Their last answers. */
extern struct Answer tessumAnswer;
extern struct Answer limitAnswer;

struct Server startContender(const struct Contender* contender);

/* Asks both. Ends the program unless the answers are the same, byte for byte. */
void compareAnswers(struct Server* tessum, struct Server* limit, const char* what,
                    const char* request);

/* Ends the program unless the last answers are the same. */
void requireSameAnswers(const char* what);

#endif
