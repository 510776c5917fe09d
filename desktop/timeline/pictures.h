// The pictures that the page has without its script and on paper, each an SVG drawing.

#pragma once

#include <string>

#include "desktop/timeline/timeline_history.h"

namespace tessum {

// In the drawings' own units.
inline constexpr double kPictureWidth = 1200;
inline constexpr double kLeastSpan = 1;  // a shorter one is joined with its neighbours

// A day: the notes at the top, then all sessions on one line, then a line for each application with
// its total. Pointing at a span shows its title, times and length.
[[nodiscard]] std::string dayPicture(const TimelineHistory& history);

// Several days: a strip for each, from left to right, with its hours from the top down.
[[nodiscard]] std::string stripsPicture(const TimelineHistory& history);

// What pointing at a session shows, in plain text. `others` shorter ones share its place.
[[nodiscard]] std::string tipText(const TimelineHistory& history, const TimelineSession& session,
                                  std::size_t others);

// Such as "09:15–10:00, 45m 0s", or "09:15–now, 45m 0s" where it is open.
[[nodiscard]] std::string spanText(Date start, Date end, bool isOpen);

}  // namespace tessum
