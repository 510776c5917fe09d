#include "desktop/timeline/spans.h"

#include <algorithm>

namespace tessum {
namespace {

bool areNeighbours(const Span& first, const Span& second, double least) {
  return second.start - first.end < least;
}

// `first` with `second`, its neighbour.
Span united(const Span& first, const Span& second) {
  const Span& longer = second.longest > first.longest ? second : first;
  return {.start = std::min(first.start, second.start),
          .end = std::max(first.end, second.end),
          .session = longer.session,
          .longest = longer.longest,
          .count = first.count + second.count};
}

}  // namespace

std::vector<Span> joined(std::span<const Span> spans, double least) {
  std::vector<Span> out;
  bool isPending = false;  // whether the last span is still too short to stand alone
  const auto settle = [&] {
    const std::size_t size = out.size();
    if (!isPending || size < 2 || !areNeighbours(out[size - 2], out[size - 1], least)) return;
    out[size - 2] = united(out[size - 2], out[size - 1]);
    out.pop_back();
  };
  for (const Span& span : spans) {
    if (isPending && areNeighbours(out.back(), span, least)) {
      out.back() = united(out.back(), span);
    } else {
      settle();
      out.push_back(span);
    }
    isPending = out.back().end - out.back().start < least;
  }
  settle();
  return out;
}

std::vector<std::size_t> lanesOf(std::span<const Annotation> notes, Date now) {
  std::vector<std::size_t> lanes;
  std::vector<Date> ends;  // of the last note in each lane
  for (const Annotation& note : notes) {
    const auto free = std::find_if(ends.begin(), ends.end(), [&](Date end) {
      return secondsBetween(end, note.startedAt) >= 0;
    });
    const auto lane = static_cast<std::size_t>(free - ends.begin());
    if (free == ends.end()) ends.emplace_back();
    ends[lane] = note.endedAt.value_or(now);
    lanes.push_back(lane);
  }
  return lanes;
}

}  // namespace tessum
