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
// A line that is sent and followed by no answer must get none: at the end, and before each answer,
// the server is known to have had nothing else to say.

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

// Reads a transcript. Throws std::runtime_error for a line of another form.
[[nodiscard]] std::vector<TranscriptLine> readTranscript(const std::string& path);

// Holds the conversation with a server of its own, in a data folder of its own, and reports what
// differs as failures of the running test.
void playTranscript(const std::string& path);

}  // namespace tessum
