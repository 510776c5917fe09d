/* The table of the measurements: rows of Markdown on standard output. */

#ifndef BENCHMARKS_TABLE_H_
#define BENCHMARKS_TABLE_H_

#include <stddef.h>

/* A cell without a figure. */
extern const char kNone[];

/* The first cell of all rows. */
extern const char* historyName;

/* Prints a row. `figure` and `goal` are in `unit`; the others are the texts of their cells. */
void printRow(const char* what, const char* tessum, const char* limit, double figure, double goal,
              const char* unit, const char* processor);

/* vsnprintf() into `out`, which is returned. */
const char* format(char* out, size_t size, const char* pattern, ...);

#endif
