/* The limit that TessumMCP is measured against: how fast can these answers possibly be?
 *
 * A plain C program that runs the same SQL statements through SQLite's C API, prepared for each
 * request as the server does, and writes the same answers byte for byte: from the columns straight
 * into one buffer, which is reused for each request and written at once. It makes no records, does
 * not allocate for a row, does not check encodings, and reads only the few request members that the
 * measurements use. It is not a usable server.
 */

#include <sqlite3.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <unistd.h>

#include "benchmarks/limit_check.h"
#include "benchmarks/limit_request.h"
#include "benchmarks/limit_texts.h"

/* The buffer. An answer's head contains the number of rows, which is known only after them, so the
 * rows begin after a gap and the head is then written right before them. */

enum { kHeadRoom = 256 };

static char* buffer;
static size_t capacity;
static size_t used;

static void reserve(size_t more) {
  if (used + more <= capacity) return;
  while (used + more > capacity) capacity = capacity == 0 ? 1 << 16 : 2 * capacity;
  buffer = realloc(buffer, capacity);
  check(buffer != NULL, "out of memory");
}

static void append(const char* bytes, size_t size) {
  reserve(size);
  memcpy(buffer + used, bytes, size);
  used += size;
}

static void appendText(const char* text) {
  append(text, strlen(text));
}

static void appendEscaped(const char* text, size_t size) {
  static const char kHexDigits[] = "0123456789abcdef";
  char* out;
  reserve(6 * size);
  out = buffer + used;
  for (const char* end = text + size; text < end; ++text) {
    const unsigned char byte = (unsigned char)*text;
    if (byte >= 0x20 && byte != '"' && byte != '\\' && byte != '/') {
      *out++ = *text;
      continue;
    }
    *out++ = '\\';
    switch (byte) {
      case '\b':
        *out++ = 'b';
        break;
      case '\f':
        *out++ = 'f';
        break;
      case '\n':
        *out++ = 'n';
        break;
      case '\r':
        *out++ = 'r';
        break;
      case '\t':
        *out++ = 't';
        break;
      default:
        if (byte < 0x20) {
          memcpy(out, "u00", 3);
          out[3] = kHexDigits[byte >> 4];
          out[4] = kHexDigits[byte & 0xF];
          out += 5;
        } else {
          *out++ = *text;
        }
    }
  }
  used = (size_t)(out - buffer);
}

static void appendColumn(sqlite3_stmt* statement, int column) {
  const char* text = (const char*)sqlite3_column_text(statement, column);
  check(text != NULL, "out of memory");
  appendEscaped(text, (size_t)sqlite3_column_bytes(statement, column));
}

static void appendNumber(int64_t number) {
  char digits[24];
  char* first = digits + sizeof digits;
  uint64_t rest = number < 0 ? 0 - (uint64_t)number : (uint64_t)number;
  do {
    *--first = (char)('0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  if (number < 0) *--first = '-';
  append(first, (size_t)(digits + sizeof digits - first));
}

static void putTwoDigits(char* at, int number) {
  at[0] = (char)('0' + number / 10);
  at[1] = (char)('0' + number % 10);
}

/* 2025-03-04T09:15:00, in UTC. The measured histories lie between 1970 and 9999. */
static void appendStamp(double date) {
  const int64_t seconds = (int64_t)date;
  const int rest = (int)(seconds % 86400);
  const int day = (int)(seconds / 86400) + 719468; /* since 1 March of the year 0 */
  const int era = day / 146097;
  const int dayOfEra = day % 146097;
  const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int month = (5 * dayOfYear + 2) / 153; /* counted from March */
  const int year = era * 400 + yearOfEra + (month >= 10 ? 1 : 0);
  char text[19] = "0000-00-00T00:00:00";
  putTwoDigits(text, year / 100);
  putTwoDigits(text + 2, year % 100);
  putTwoDigits(text + 5, month < 10 ? month + 3 : month - 9);
  putTwoDigits(text + 8, dayOfYear - (153 * month + 2) / 5 + 1);
  putTwoDigits(text + 11, rest / 3600);
  putTwoDigits(text + 14, rest / 60 % 60);
  putTwoDigits(text + 17, rest % 60);
  append(text, sizeof text);
}

static void appendDuration(double duration) {
  const int64_t seconds = (int64_t)duration;
  if (seconds < 60) {
    appendNumber(seconds);
    appendText("s");
  } else if (seconds < 3600) {
    appendNumber(seconds / 60);
    appendText("m ");
    appendNumber(seconds % 60);
    appendText("s");
  } else {
    appendNumber(seconds / 3600);
    appendText("h ");
    appendNumber(seconds / 60 % 60);
    appendText("m");
  }
}

static void appendSpan(sqlite3_stmt* statement, int startColumn, int hasEnd) {
  appendText("  [");
  appendStamp(sqlite3_column_double(statement, startColumn));
  appendText(" \xE2\x86\x92 ");
  if (hasEnd) {
    appendStamp(sqlite3_column_double(statement, startColumn + 1));
  } else {
    appendText("ongoing");
  }
  appendText("]  (");
}

static double now(void) {
  struct timeval time;
  gettimeofday(&time, NULL);
  return (double)time.tv_sec + (double)time.tv_usec / 1e6;
}

/* Statements. */

static sqlite3* db;

static sqlite3_stmt* prepare(const char* sql) {
  sqlite3_stmt* statement = NULL;
  check(sqlite3_prepare_v2(db, sql, -1, &statement, NULL) == SQLITE_OK, sqlite3_errmsg(db));
  return statement;
}

static void runToEnd(sqlite3_stmt* statement) {
  check(sqlite3_step(statement) == SQLITE_DONE, sqlite3_errmsg(db));
  sqlite3_finalize(statement);
}

/* Writes the rows of the statement, which are sessions, and ends it. Returns their number. */
static int appendActivities(sqlite3_stmt* statement) {
  int count = 0;
  for (; sqlite3_step(statement) == SQLITE_ROW; ++count) {
    const int hasEnd = sqlite3_column_type(statement, 5) != SQLITE_NULL;
    appendText("\\n\xE2\x80\xA2 ");
    appendColumn(statement, 1);
    if (sqlite3_column_type(statement, 3) != SQLITE_NULL) {
      appendText(" \xE2\x80\x93 ");
      appendColumn(statement, 3);
    }
    appendSpan(statement, 4, hasEnd);
    if (hasEnd) {
      appendDuration(sqlite3_column_double(statement, 5) - sqlite3_column_double(statement, 4));
    } else {
      appendText("ongoing");
    }
    appendText(")");
  }
  sqlite3_finalize(statement);
  return count;
}

/* The same for annotations, with their own header. */
static void appendAnnotations(sqlite3_stmt* statement) {
  const size_t begin = used;
  char header[64];
  size_t size;
  int count = 0;
  for (; sqlite3_step(statement) == SQLITE_ROW; ++count) {
    const int hasEnd = sqlite3_column_type(statement, 3) != SQLITE_NULL;
    const double start = sqlite3_column_double(statement, 2);
    appendText("\\n\xE2\x80\xA2 ");
    appendColumn(statement, 1);
    appendSpan(statement, 2, hasEnd);
    appendDuration((hasEnd ? sqlite3_column_double(statement, 3) : now()) - start);
    appendText(")");
  }
  sqlite3_finalize(statement);
  if (count == 0) return;
  size = (size_t)snprintf(header, sizeof header, "\\n\\nAnnotations (%d):", count);
  reserve(size);
  memmove(buffer + begin + size, buffer + begin, used - begin);
  memcpy(buffer + begin, header, size);
  used += size;
}

/* Answers. */

/* Writes the head before the rows, and returns the start of the answer. */
static size_t finishActivities(int id, int count) {
  char head[kHeadRoom];
  int size;
  if (count == 0) {
    size = snprintf(head, sizeof head,
                    "{\"jsonrpc\":\"2.0\",\"id\":%d,\"result\":{\"content\":[{\"text\":"
                    "\"No activities found.",
                    id);
  } else {
    size = snprintf(head, sizeof head,
                    "{\"jsonrpc\":\"2.0\",\"id\":%d,\"result\":{\"content\":[{\"text\":"
                    "\"Activities (%d sessions):",
                    id, count);
  }
  memcpy(buffer + kHeadRoom - size, head, (size_t)size);
  return kHeadRoom - (size_t)size;
}

static size_t getActivities(const char* line, int id) {
  const double start = dayStart(line, 0);
  const double end = dayStart(line, 1);
  sqlite3_stmt* statement = prepare(kActivitiesOfDay);
  int count;
  sqlite3_bind_double(statement, 1, start);
  sqlite3_bind_double(statement, 2, end);
  sqlite3_bind_int(statement, 3, numberAfter(line, "\"limit\":", 100));
  count = appendActivities(statement);
  statement = prepare(kAnnotationsOfDay);
  sqlite3_bind_double(statement, 1, end);
  sqlite3_bind_double(statement, 2, start);
  sqlite3_bind_int(statement, 3, 100);
  appendAnnotations(statement);
  return finishActivities(id, count);
}

static size_t searchActivities(const char* line, int id) {
  sqlite3_stmt* statement = prepare(kSearch);
  char pattern[256];
  const char* query;
  const int size = (int)textAfter(line, "\"query\":\"", &query);
  snprintf(pattern, sizeof pattern, "%%%.*s%%", size, query);
  sqlite3_bind_text(statement, 1, pattern, -1, SQLITE_STATIC);
  sqlite3_bind_text(statement, 2, pattern, -1, SQLITE_STATIC);
  sqlite3_bind_int(statement, 3, numberAfter(line, "\"limit\":", 50));
  return finishActivities(id, appendActivities(statement));
}

static void appendHead(int id) {
  appendText("{\"jsonrpc\":\"2.0\",\"id\":");
  appendNumber(id);
  appendText(",");
}

static void annotate(const char* line, int id) {
  const double start = now();
  sqlite3_stmt* statement;
  const char* text;
  const size_t size = textAfter(line, "\"text\":\"", &text);

  statement = prepare(kEndOpenAnnotations);
  sqlite3_bind_double(statement, 1, start);
  runToEnd(statement);
  statement = prepare(kInsertAnnotation);
  sqlite3_bind_text(statement, 1, text, (int)size, SQLITE_STATIC);
  sqlite3_bind_double(statement, 2, start);
  sqlite3_bind_null(statement, 3);
  runToEnd(statement);

  appendHead(id);
  appendText("\"result\":{\"content\":[{\"text\":\"Annotation started: ");
  appendEscaped(text, size);
  appendText(" (since ");
  appendStamp(start);
  appendText("Z)");
}

static void answer(const char* line) {
  const int id = numberAfter(line, "\"id\":", 0);
  size_t begin = kHeadRoom;
  used = 0;
  reserve(kHeadRoom);
  used = kHeadRoom;
  if (after(line, "\"method\":\"initialize\"") != NULL) {
    appendHead(id);
    appendText(kInitialize);
  } else if (after(line, "\"method\":\"tools/list\"") != NULL) {
    appendHead(id);
    appendText(kTools);
  } else {
    if (after(line, "\"name\":\"get_activities\"") != NULL) {
      begin = getActivities(line, id);
    } else if (after(line, "\"name\":\"search_activities\"") != NULL) {
      begin = searchActivities(line, id);
    } else if (after(line, "\"name\":\"annotate\"") != NULL) {
      annotate(line, id);
    } else {
      check(0, "a request that is not measured");
    }
    appendText(kEndOfText);
  }
  appendText("\n");
  while (begin < used) {
    const ssize_t count = write(STDOUT_FILENO, buffer + begin, used - begin);
    check(count > 0, "cannot write");
    begin += (size_t)count;
  }
}

int main(void) {
  const char* line;
  check(sqlite3_open(databasePath(), &db) == SQLITE_OK, "cannot open the database");
  check(sqlite3_exec(db, kSchema, NULL, NULL, NULL) == SQLITE_OK, sqlite3_errmsg(db));
  while ((line = nextRequest()) != NULL) answer(line);
  return 0;
}
