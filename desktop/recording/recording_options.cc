#include "desktop/recording/recording_options.h"

namespace tessum {

RecordingSettings recordingSettings(const Settings& settings, const RecordingOptions& options) {
  return {.awayAfter = options.awayAfter.value_or(settings.awayAfter.value).seconds,
          .titles = options.titles.value_or(settings.titles.value),
          .hide = settings.rules.hide};
}

}  // namespace tessum
