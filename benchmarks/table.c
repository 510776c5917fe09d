#include "benchmarks/table.h"

#include <stdarg.h>
#include <stdio.h>

const char kNone[] = "\xE2\x80\x93";
const char* historyName;

void printRow(const char* what, const char* tessum, const char* limit, double figure, double goal,
              const char* unit, const char* processor) {
  printf("| %s | %s | %s | %s | %.2f%s | %.2f%s | %s | %s |\n", historyName, what, tessum, limit,
         figure, unit, goal, unit, figure <= goal ? "yes" : "no", processor);
  fflush(stdout);
}

const char* format(char* out, size_t size, const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  vsnprintf(out, size, pattern, arguments);
  va_end(arguments);
  return out;
}
