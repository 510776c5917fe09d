/* How much memory the servers take. Each call prints a row of the table. */

#ifndef BENCHMARKS_MEASURE_MEMORY_H_
#define BENCHMARKS_MEASURE_MEMORY_H_

/* In use after one `request`. */
void measureMemoryAfterStart(const char* request);

/* The peak for an answer of 100 MB, or of the whole history where that is less. Prints nothing
 * over a history that is too short to tell. */
void measureMemoryOfAnswer(void);

/* The peak for messages of 32 MiB, of many shapes. Each gets a server of its own; the one that
 * takes most is printed. */
void measureMemoryOfMessages(void);

#endif
