// How sessions and notes share the room of a drawing.

#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "desktop/timeline/timeline_history.h"

namespace tessum {

// A stretch of a drawing, in its own units, that one session stands for.
struct Span {
  double start = 0;
  double end = 0;
  std::size_t session = 0;  // the longest one in it
  double longest = 0;       // that one's length
  std::size_t count = 1;    // how many sessions are in it
};

// Joins neighbours that are shorter than `least`, so that a drawing has no more spans than it has
// room for. Neighbours lie less than `least` apart. The longer of two stands for both, so a short
// one beside a long one vanishes in it. `spans` are in the order of their starts.
[[nodiscard]] std::vector<Span> joined(std::span<const Span> spans, double least);

// A lane for each note, numbered from 0, so that notes in one lane do not overlap. Open notes end
// at `now`.
[[nodiscard]] std::vector<std::size_t> lanesOf(std::span<const Annotation> notes, Date now);

}  // namespace tessum
