// A conversation with the server, written down.
//
// Every line of a transcript is one of these:
//
//   # text       a comment; empty lines mean nothing
//   zone NAME    the time zone the server runs in (before the first message; otherwise UTC)
//   sql TEXT     run on the database, whose tables exist from the start
//   > TEXT       a line sent to the server
//   < JSON       the answer to it: the same JSON value, whatever the order of its members
//   ~ REGEX      the answer to it, where the text depends on the clock: the whole line matches
//
// A line that is sent without an answer below it must get none: every other line of output fails
// the test.

#pragma once

#include <string>
#include <vector>

namespace tessum {

struct TranscriptLine {
  enum class Kind { zone, sql, send, expectJson, expectMatch };

  Kind kind = Kind::send;
  std::string text;
  int number = 0;  // in the file, from 1
};

// Reads a transcript. Throws std::runtime_error for any other line.
[[nodiscard]] std::vector<TranscriptLine> readTranscript(const std::string& path);

// Plays the conversation with a new server in a new data folder, and reports differences as
// failures of the running test.
void playTranscript(const std::string& path);

}  // namespace tessum
