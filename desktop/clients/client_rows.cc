#include "desktop/clients/client_rows.h"

#include <system_error>

#include "desktop/clients/assistants.h"
#include "desktop/clients/registration.h"

namespace tessum {
namespace {

// Absent where the application does not read the file and it has no entry either.
std::optional<ClientRow> rowOf(const Host& host, const Assistant& assistant,
                               const std::string& file) {
  const bool isRead = file == assistant.files.front();
  ClientRow row{.application = std::string(assistant.name),
                .isPresent = isPresent(assistant, host.files),
                .isRegistered = std::nullopt,
                .file = file};
  Registration found;
  try {
    found = registrationIn({file, assistant.format}, host);
  } catch (const std::system_error& error) {
    row.remark = error.what();
    return row;
  }
  if (!found.problem.empty()) row.remark = file + ": " + found.problem + ".";
  if (!found.entry) {
    if (found.problem.empty()) row.isRegistered = false;
    return isRead || !row.remark.empty() ? std::optional(row) : std::nullopt;
  }
  row.isRegistered = true;
  row.form = found.entry->form;
  row.problem = isRead ? found.entry->problem : "the application does not read this file";
  return row;
}

}  // namespace

std::vector<ClientRow> clientRows(const Host& host) {
  std::vector<ClientRow> rows;
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    for (const std::string& file : assistant.files) {
      if (auto row = rowOf(host, assistant, file)) rows.push_back(std::move(*row));
    }
  }
  return rows;
}

}  // namespace tessum
