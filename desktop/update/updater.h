// The update checker with the parts of this system around it.

#pragma once

#include <filesystem>
#include <string>

#include "core/fetch/http_client.h"
#include "core/loop/main_loop.h"
#include "core/loop/serial_queue.h"
#include "core/platform/app_info.h"
#include "core/platform/locations.h"
#include "core/platform/url_opener.h"
#include "core/update/update_checker.h"

namespace tessum {

// Nothing is asked before the checker is told to. Main thread only.
class Updater {
 public:
  // Both must outlive the updater.
  Updater(MainLoop& loop, const Locations& locations)
      : http_({.program = fetchProgram(locations)}),
        checker_({http_, queue_, loop, locations, appInfo_, opener_}) {}

  [[nodiscard]] UpdateChecker& checker() { return checker_; }

 private:
  // Where it lies is told from where this program does.
  [[nodiscard]] static std::string fetchProgram(const Locations& locations) {
    const std::filesystem::path program = locations.executablePath().value_or("");
    return program.parent_path() / TESSUM_FETCH_PROGRAM;
  }

  const SystemAppInfo appInfo_;
  const SystemUrlOpener opener_{};
  ThreadQueue queue_{"com.tessum.update"};
  FetchProgramClient http_;
  UpdateChecker checker_;
};

}  // namespace tessum
