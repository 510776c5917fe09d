/* The limit that "Tessum usage" by application is measured against:
 *
 *   limit-report DATABASE START END
 *
 * A plain C program that runs the same statement in the same steps through SQLite's C API, and adds
 * up the time of each application and of each day of UTC between START and END, in seconds since
 * 1970. It cuts sessions at the edges of days, checks no encodings, knows no time zones, and prints
 * the totals. It is not a usable report. */

#include <sqlite3.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

enum { kRowsPerStep = 500, kDay = 86400, kSlots = 4096, kLongestSession = 31 * kDay };

static const char kStatement[] =
    "SELECT id, app_name, bundle_id, NULL, start_time, end_time FROM activities "
    "WHERE (start_time, id) > (?, ?) AND start_time < ? "
    "AND (start_time >= ? OR COALESCE(end_time, ?) > ?) "
    "ORDER BY start_time, id LIMIT ?;";

/* An application is its name and its identifier. */
struct Application {
  char* name;
  char* identifier; /* null where it has none */
  double seconds;
  long sessions;
};

static struct Application applications[kSlots];

static void require(int isGood, const char* what) {
  if (isGood) return;
  fprintf(stderr, "limit-report: %s\n", what);
  exit(1);
}

static char* copyOf(const char* text) {
  char* const copy = strdup(text);
  require(copy != NULL, "no memory");
  return copy;
}

static struct Application* applicationOf(const char* name, const char* identifier) {
  uint64_t hash = 14695981039346656037U;
  for (const char* at = name; *at != '\0'; ++at)
    hash = (hash ^ (unsigned char)*at) * 1099511628211U;
  for (size_t slot = hash % kSlots;; slot = (slot + 1) % kSlots) {
    struct Application* const application = &applications[slot];
    if (application->name == NULL) {
      application->name = copyOf(name);
      application->identifier = identifier == NULL ? NULL : copyOf(identifier);
      return application;
    }
    if (strcmp(application->name, name) != 0) continue;
    if ((application->identifier == NULL) != (identifier == NULL)) continue;
    if (identifier == NULL || strcmp(application->identifier, identifier) == 0) return application;
  }
}

static double larger(double a, double b) {
  return a > b ? a : b;
}

static double smaller(double a, double b) {
  return a < b ? a : b;
}

static void addToDays(double* days, double first, double start, double end) {
  while (start < end) {
    const size_t day = (size_t)((start - first) / kDay);
    const double next = smaller(end, first + (double)(day + 1) * kDay);
    days[day] += next - start;
    start = next;
  }
}

int main(int argc, char** argv) {
  require(argc == 4, "usage: limit-report DATABASE START END");
  const double start = atof(argv[2]);
  const double end = atof(argv[3]);
  require(start < end, "the end must come after the start");
  sqlite3* db = NULL;
  const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
  require(sqlite3_open_v2(argv[1], &db, flags, NULL) == SQLITE_OK, "the database cannot be opened");
  sqlite3_stmt* statement = NULL;
  require(sqlite3_prepare_v2(db, kStatement, -1, &statement, NULL) == SQLITE_OK,
          "the statement cannot be prepared");
  double* const days = calloc((size_t)((end - start) / kDay) + 2, sizeof(double));
  require(days != NULL, "no memory");
  const double now = (double)time(NULL);
  double lastStart = start - kLongestSession;
  int64_t lastID = INT64_MIN;
  double total = 0;
  long sessions = 0;
  for (int rows = kRowsPerStep; rows == kRowsPerStep;) {
    rows = 0;
    sqlite3_bind_double(statement, 1, lastStart);
    sqlite3_bind_int64(statement, 2, lastID);
    sqlite3_bind_double(statement, 3, end);
    sqlite3_bind_double(statement, 4, start);
    sqlite3_bind_double(statement, 5, now);
    sqlite3_bind_double(statement, 6, start);
    sqlite3_bind_int(statement, 7, kRowsPerStep);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      ++rows;
      lastID = sqlite3_column_int64(statement, 0);
      lastStart = sqlite3_column_double(statement, 4);
      const int isOpen = sqlite3_column_type(statement, 5) == SQLITE_NULL;
      const double from = larger(lastStart, start);
      const double until = smaller(isOpen ? now : sqlite3_column_double(statement, 5), end);
      struct Application* const application =
          applicationOf((const char*)sqlite3_column_text(statement, 1),
                        (const char*)sqlite3_column_text(statement, 2));
      application->seconds += larger(until - from, 0);
      application->sessions += 1;
      addToDays(days, start, from, until);
      total += larger(until - from, 0);
      sessions += 1;
    }
    sqlite3_reset(statement);
  }
  printf("%.0f s in %ld sessions\n", total, sessions);
  for (size_t i = 0; i < kSlots; ++i) {
    if (applications[i].name == NULL) continue;
    printf("%s %.0f %ld\n", applications[i].name, applications[i].seconds,
           applications[i].sessions);
  }
  for (double day = start; day < end; day += kDay) {
    printf("%.0f\n", days[(size_t)((day - start) / kDay)]);
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  return 0;
}
