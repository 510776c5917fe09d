// What the commands about Tessum itself print as JSON, as docs/DATA.md describes it.

#pragma once

#include <string>
#include <vector>

#include "core/http/endpoint_state.h"
#include "desktop/clients/client_rows.h"
#include "desktop/doctor/finding.h"
#include "desktop/settings/settings.h"
#include "desktop/setup/overview.h"

namespace tessum {

// The history, as far as its state tells of it.
struct HistoryState {
  std::string path;
  std::optional<std::uintmax_t> size = {};  // in bytes; absent where there is none
  std::optional<Activity> session = {};     // that is being recorded
  std::optional<Annotation> note = {};      // the current one
};

[[nodiscard]] std::string statusData(const Overview& overview, const HistoryState& history,
                                     EndpointState endpoint);

[[nodiscard]] std::string doctorData(const std::vector<Finding>& findings);

[[nodiscard]] std::string clientsData(const std::vector<ClientRow>& rows);

// `path` is that of the file, which `exists` or not.
[[nodiscard]] std::string settingsData(const Settings& settings, const std::string& path,
                                       bool exists);

}  // namespace tessum
