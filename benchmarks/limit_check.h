#ifndef BENCHMARKS_LIMIT_CHECK_H_
#define BENCHMARKS_LIMIT_CHECK_H_

#include <stdio.h>
#include <stdlib.h>

/* Ends the limit server with a message unless `isGood`. In the header, because each row is checked.
 */
static inline void check(int isGood, const char* what) {
  if (isGood) return;
  fprintf(stderr, "limit-server: %s\n", what);
  abort();
}

#endif
