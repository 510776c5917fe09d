/* Measures the servers' memory. Each call prints a row of the table. */

#ifndef BENCHMARKS_MEASURE_MEMORY_H_
#define BENCHMARKS_MEASURE_MEMORY_H_

/* In use after one `request`. */
void measureMemoryAfterStart(const char* request);

/* The peak for an answer of 100 MB, or of the whole history if that is less. Prints nothing for a
 * history that is too short. */
void measureMemoryOfAnswer(void);

/* The peak for messages of 32 MiB, of many shapes. Each gets its own server; the largest peak is
 * printed. */
void measureMemoryOfMessages(void);

#endif
