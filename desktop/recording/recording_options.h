// The command line's options for recording.

#pragma once

#include <optional>

#include "desktop/recording/recording.h"
#include "desktop/settings/settings.h"

namespace tessum {

// Each overrides the settings; when absent, the settings decide.
struct RecordingOptions {
  std::optional<AwayAfter> awayAfter = {};
  std::optional<Titles> titles = {};
};

// The settings with `options` applied.
[[nodiscard]] RecordingSettings recordingSettings(const Settings& settings,
                                                  const RecordingOptions& options);

}  // namespace tessum
