// What "Tessum clients" shows.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/host/host.h"

namespace tessum {

// A configuration file of an assistant application.
struct ClientRow {
  std::string application;
  bool isPresent = false;            // on this computer
  std::optional<bool> isRegistered;  // absent where the file cannot be made out
  std::string form = {};             // of the entry; empty where there is none
  std::string problem = {};          // why the entry does not work now; empty where it does
  std::string remark = {};           // why the file cannot be made out; empty where it can
  std::string file;
};

// A row for each application, and one for each further file that has an entry. Checks the entries,
// and so may wait a few seconds for the endpoint.
[[nodiscard]] std::vector<ClientRow> clientRows(const Host& host);

}  // namespace tessum
