/* The limit server's SQL statements, and the fixed parts of its answers. */

#ifndef BENCHMARKS_LIMIT_TEXTS_H_
#define BENCHMARKS_LIMIT_TEXTS_H_

static const char kSchema[] =
    "CREATE TABLE IF NOT EXISTS activities (\n"
    "    id         INTEGER PRIMARY KEY AUTOINCREMENT,\n"
    "    app_name   TEXT    NOT NULL,\n"
    "    bundle_id  TEXT,\n"
    "    title      TEXT,\n"
    "    start_time REAL    NOT NULL,\n"
    "    end_time   REAL,\n"
    "    created_at REAL    NOT NULL DEFAULT (strftime('%s','now'))\n"
    ");\n"
    "CREATE INDEX IF NOT EXISTS idx_activities_start ON activities(start_time);\n"
    "CREATE INDEX IF NOT EXISTS idx_activities_app   ON activities(app_name);\n"
    "\n"
    "CREATE TABLE IF NOT EXISTS annotations (\n"
    "    id         INTEGER PRIMARY KEY AUTOINCREMENT,\n"
    "    text       TEXT    NOT NULL,\n"
    "    started_at REAL    NOT NULL,\n"
    "    ended_at   REAL,\n"
    "    created_at REAL    NOT NULL DEFAULT (strftime('%s','now'))\n"
    ");\n"
    "CREATE INDEX IF NOT EXISTS idx_annotations_started ON annotations(started_at);";

static const char kActivitiesOfDay[] =
    "SELECT id, app_name, bundle_id, title, start_time, end_time\n"
    "FROM activities\n"
    "WHERE start_time >= ? AND start_time < ?\n"
    "ORDER BY start_time DESC\n"
    "LIMIT ?;";

static const char kSearch[] =
    "SELECT id, app_name, bundle_id, title, start_time, end_time\n"
    "FROM activities\n"
    "WHERE app_name LIKE ? OR title LIKE ?\n"
    "ORDER BY start_time DESC\n"
    "LIMIT ?;";

static const char kAnnotationsOfDay[] =
    "SELECT id, text, started_at, ended_at\n"
    "FROM annotations\n"
    "WHERE started_at < ? AND (ended_at IS NULL OR ended_at > ?)\n"
    "ORDER BY started_at DESC\n"
    "LIMIT ?;";

static const char kEndOpenAnnotations[] =
    "UPDATE annotations SET ended_at = ? WHERE ended_at IS NULL;";

static const char kInsertAnnotation[] =
    "INSERT INTO annotations (text, started_at, ended_at)\n"
    "VALUES (?, ?, ?);";

static const char kInitialize[] =
    "\"result\":{\"capabilities\":{\"resources\":{},\"tools\":{}},"
    "\"protocolVersion\":\"2024-11-05\","
    "\"serverInfo\":{\"name\":\"tessum\",\"version\":\"1.0.0\"}}}";

#define DATE_PROPERTY                                                                            \
  "\"date\":{\"description\":\"ISO 8601 date string (YYYY-MM-DD). Defaults to today.\",\"type\"" \
  ":\"string\"}"
#define LIMIT_PROPERTY(limit)                                                  \
  "\"limit\":{\"description\":\"Maximum number of results. Defaults to " limit \
  "."                                                                          \
  "\",\"type\":\"integer\"}"

static const char kTools[] =
    "\"result\":{\"tools\":["
    "{\"description\":\"Get logged activities (app usage) for a specific date. Returns a list of "
    "app sessions with start\\/end times.\",\"inputSchema\":{\"properties\":{" DATE_PROPERTY
    "," LIMIT_PROPERTY("100")
    "},\"type\":\"object\"},\"name\":\"get_activities\"},"
    "{\"description\":\"Search logged activities by app name or window title.\",\"inputSchema\":"
    "{\"properties\":{" LIMIT_PROPERTY("50")
    ",\"query\":{\"description\":\"Search term to match against app name or window title.\","
    "\"type\":\"string\"}},\"required\":[\"query\"],\"type\":\"object\"},"
    "\"name\":\"search_activities\"},"
    "{\"description\":\"Get a summary of time spent per application for a specific date.\","
    "\"inputSchema\":{\"properties\":{" DATE_PROPERTY
    "},\"type\":\"object\"},\"name\":\"get_app_usage\"},"
    "{\"description\":\"Add a context annotation describing what the user is working on. "
    "Automatically ends any previous annotation. Call with empty text to just stop the current "
    "annotation.\",\"inputSchema\":{\"properties\":{\"duration\":{\"description\":\"Optional. How "
    "long this task has already been going on, e.g. '30m', '1h', '1h30m'. If set, the annotation "
    "is backdated by this amount.\",\"type\":\"string\"},\"text\":{\"description\":\"What the user "
    "is working on, e.g. 'Reviewing PR #42' or 'Fixing auth bug'. Empty string ends the current "
    "annotation without starting a new one.\",\"type\":\"string\"}},\"required\":[\"text\"],"
    "\"type\":\"object\"},\"name\":\"annotate\"},"
    "{\"description\":\"Get context annotations for a specific date. Shows what the user reported "
    "working on.\",\"inputSchema\":{\"properties\":{" DATE_PROPERTY
    "},\"type\":\"object\"},\"name\":\"get_annotations\"}]}}";

static const char kEndOfText[] = "\",\"type\":\"text\"}],\"isError\":false}}";

#endif
