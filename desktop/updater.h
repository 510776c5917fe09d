// The update checker with the parts of this system around it.

#pragma once

#include "core/platform/app_info.h"
#include "core/platform/http_client.h"
#include "core/platform/locations.h"
#include "core/platform/main_loop.h"
#include "core/platform/serial_queue.h"
#include "core/platform/url_opener.h"
#include "core/update/update_checker.h"

namespace tessum {

// Nothing is asked before the checker is told to. Main thread only.
class Updater {
 public:
  // Both must outlive the updater.
  Updater(MainLoop& loop, const Locations& locations)
      : checker_({http_, queue_, loop, locations, appInfo_, opener_}) {}

  [[nodiscard]] UpdateChecker& checker() { return checker_; }

 private:
  const SystemAppInfo appInfo_;
  const SystemUrlOpener opener_{};
  ThreadQueue queue_{"com.tessum.update"};
  CurlHttpClient http_;
  UpdateChecker checker_;
};

}  // namespace tessum
