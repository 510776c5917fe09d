// `Tessum record`, running on a test's desktop, and what it has written. The desktop entries it
// sees are those that the test puts into the folder "share" of the desktop's home.

#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/sql.h"
#include "tests/support/x11_desktop.h"

namespace tessum {

class Recorder {
 public:
  using Rows = std::vector<std::string>;

  // Starts it, and waits until it has made the store.
  explicit Recorder(const Desktop& desktop)
      : desktop_(desktop),
        process_(desktop.start(TESSUM_PROGRAM, {"record", "--no-update-check"},
                               {"XDG_DATA_DIRS=" + desktop.home().file("share")})) {
    if (!eventually([&] { return std::filesystem::exists(store()); })) {
      throw std::runtime_error("no store was made");
    }
  }

  [[nodiscard]] ChildProcess& process() { return *process_; }
  [[nodiscard]] std::string store() const { return desktop_.dataFolder() + "/activities.db"; }

  // The sessions so far. A reader's lock would make the recorder's writing fail, so a copy is read,
  // which may be one of a write under way: then there are none.
  [[nodiscard]] Rows sessions() const {
    try {
      const std::string copy = desktop_.home().file("copy.db");
      std::filesystem::copy_file(store(), copy, std::filesystem::copy_options::overwrite_existing);
      return Sql(copy).rows(
          "SELECT app_name, bundle_id, title, CASE WHEN end_time IS NULL THEN 'open' "
          "WHEN end_time >= start_time THEN 'closed' ELSE 'crossed' END "
          "FROM activities ORDER BY id");
    } catch (const std::exception&) {
      return {};
    }
  }

  // Whether the sessions become those of `rows`, within a minute.
  [[nodiscard]] bool comesTo(const Rows& rows) const {
    return eventually([&] { return sessions() == rows; });
  }

 private:
  const Desktop& desktop_;
  std::unique_ptr<ChildProcess> process_;
};

}  // namespace tessum
