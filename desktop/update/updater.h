// The update checker with its real dependencies.

#pragma once

#include <filesystem>
#include <string>

#include "core/fetch/fetch_program_client.h"
#include "core/loop/main_loop.h"
#include "core/platform/app_info.h"
#include "core/platform/locations.h"
#include "core/platform/url_opener.h"
#include "core/update/update_checker.h"
#include "desktop/update/download_opener.h"

namespace tessum {

// Sends no request until the checker is told to. Main thread only.
class Updater {
 public:
  // Both must outlive the updater.
  Updater(MainLoop& loop, const Locations& locations)
      : http_(loop, {.program = fetchProgram(locations)}),
        checker_({http_, loop, locations, appInfo_, opener_}) {}

  [[nodiscard]] UpdateChecker& checker() { return checker_; }

  // Opens what the checker downloads.
  [[nodiscard]] const DownloadOpener& opener() const { return opener_; }

 private:
  // The path of TessumFetch, which is installed at a fixed path relative to this program. Empty
  // when this program's path is unknown.
  [[nodiscard]] static std::string fetchProgram(const Locations& locations) {
    const auto program = locations.executablePath();
    if (!program) return {};
    return std::filesystem::path(*program).parent_path() / TESSUM_FETCH_PROGRAM;
  }

  const SystemAppInfo appInfo_;
  const SystemUrlOpener systemOpener_{};
  const DownloadOpener opener_{systemOpener_};
  FetchProgramClient http_;
  UpdateChecker checker_;
};

}  // namespace tessum
