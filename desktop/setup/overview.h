// What matters first about Tessum on this computer: whether it records, from login on, which
// assistants know of it, and what to type next.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/base/date.h"
#include "desktop/host/host.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/settings/pause.h"

namespace tessum {

struct Overview {
  Date now;
  RecorderState recorder;
  std::optional<Pause> pause;
  std::optional<std::string> loginStart;  // what starts the recorder at each login
  std::vector<std::string> informed;      // assistants on this computer that know of Tessum
  std::vector<std::string> uninformed;    // those that do not
};

// Looks at the files of the recorder, the session and the assistants. Throws std::system_error.
[[nodiscard]] Overview overview(const Host& host);

// Each of these is for a person, without a full stop.

// "yes, since 09:15 (42m) without a gap, by X11".
[[nodiscard]] std::string recordingText(const Overview& overview);

// "yes, by ...".
[[nodiscard]] std::string loginText(const Overview& overview);

// "Cursor knows of Tessum; Zed does not".
[[nodiscard]] std::string assistantsText(const Overview& overview);

// What to type next, and what that does.
[[nodiscard]] std::string nextText(const Overview& overview);

// "since 09:15 (42m 3s)", with the date where it is not today's.
[[nodiscard]] std::string sinceText(Date start, Date now);

// The texts with commas between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& texts);

}  // namespace tessum
