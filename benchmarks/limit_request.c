#include "benchmarks/limit_request.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "benchmarks/limit_check.h"

const char* databasePath(void) {
  static char path[4096];
  const char* folder = getenv("XDG_DATA_HOME");
  check(folder != NULL, "XDG_DATA_HOME is not set");
  snprintf(path, sizeof path, "%s/Tessum/activities.db", folder);
  return path;
}

const char* nextRequest(void) {
  static char line[1 << 16];
  size_t size = 0;
  do {
    const ssize_t count = read(STDIN_FILENO, line + size, sizeof line - 1 - size);
    check(count >= 0, "cannot read");
    if (count == 0) return NULL;
    size += (size_t)count;
  } while (line[size - 1] != '\n');
  line[size] = '\0';
  return line;
}

const char* after(const char* line, const char* mark) {
  const char* found = strstr(line, mark);
  return found == NULL ? NULL : found + strlen(mark);
}

int numberAfter(const char* line, const char* mark, int otherwise) {
  const char* number = after(line, mark);
  return number == NULL ? otherwise : atoi(number);
}

size_t textAfter(const char* line, const char* mark, const char** text) {
  *text = after(line, mark);
  check(*text != NULL, "a request that is not measured");
  return strcspn(*text, "\"");
}

double dayStart(const char* line, int days) {
  struct tm date = {0};
  const char* text;
  textAfter(line, "\"date\":\"", &text);
  check(sscanf(text, "%d-%d-%d", &date.tm_year, &date.tm_mon, &date.tm_mday) == 3, "a date");
  date.tm_year -= 1900;
  date.tm_mon -= 1;
  date.tm_mday += days;
  date.tm_isdst = -1;
  return (double)mktime(&date);
}
