/* The limit server's input: its database, its requests, and the few members that it reads from
 * them. */

#ifndef BENCHMARKS_LIMIT_REQUEST_H_
#define BENCHMARKS_LIMIT_REQUEST_H_

#include <stddef.h>

/* The path of the database, from the environment. */
const char* databasePath(void);

/* The next request from standard input, which must come alone; null at the end of input. */
const char* nextRequest(void);

/* What follows `mark` in the line; null when the line does not contain it. */
const char* after(const char* line, const char* mark);

/* The number that follows `mark`, or `otherwise`. */
int numberAfter(const char* line, const char* mark, int otherwise);

/* Sets `text` to what follows `mark`, and returns its length up to the next quotation mark. Escapes
 * are not decoded: the requests have none. */
size_t textAfter(const char* line, const char* mark, const char** text);

/* The beginning of the local day `days` days after the one in "date". */
double dayStart(const char* line, int days);

#endif
