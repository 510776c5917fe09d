// What the command line says of recording.

#pragma once

#include <optional>

#include "desktop/recording/recording.h"
#include "desktop/settings/settings.h"

namespace tessum {

// Each wins over the settings; absent is what the settings decide.
struct RecordingOptions {
  std::optional<AwayAfter> awayAfter = {};
  std::optional<Titles> titles = {};
};

// What holds for a recording.
[[nodiscard]] RecordingSettings recordingSettings(const Settings& settings,
                                                  const RecordingOptions& options);

}  // namespace tessum
