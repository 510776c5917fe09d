// The doctor's look at the history and its folder.

#include <unistd.h>

#include <exception>
#include <filesystem>
#include <system_error>

#include "core/store/history.h"
#include "desktop/doctor/finding.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

// The folder itself or, where it is missing, the nearest one above it that is there.
std::filesystem::path nearestExisting(std::filesystem::path path) {
  std::error_code ignored;
  while (path.has_relative_path() && !std::filesystem::exists(path, ignored)) {
    path = path.parent_path();
  }
  return path;
}

Finding openSessionsFinding(const Host& host, History& history) {
  auto open = history.openSessions();
  if (currentSession(recorderState(host.locations), open)) open.pop_back();
  if (open.empty()) return {"Every session of the past has ended.", ""};
  const bool isOne = open.size() == 1;
  return {std::to_string(open.size()) + (isOne ? " session was" : " sessions were") +
              " left open by a recorder that was cut off, the oldest on " +
              dateText(open.front().startTime) + ".",
          "\"Tessum doctor --close-open\" ends each where the next one began."};
}

}  // namespace

std::vector<Finding> checkFolder(const Host& host) {
  const std::string folder = host.locations.dataFolder();
  const auto existing = nearestExisting(folder);
  std::error_code ignored;
  if (!std::filesystem::is_directory(existing, ignored)) {
    return {{existing.string() + " is in the place of a folder.",
             "Move it away, so that the folder " + folder + " can be made."}};
  }
  if (access(existing.c_str(), R_OK | W_OK | X_OK) != 0) {
    return {{"The folder " + existing.string() + " cannot be written to.",
             "Give yourself the right to: chmod u+rwx \"" + existing.string() + "\""}};
  }
  return {{"The folder " + folder + " can be written to.", ""}};
}

std::vector<Finding> checkHistory(const Host& host) {
  const std::string path = historyPath(host.locations);
  std::vector<Finding> findings;
  try {
    History history(path, History::Access::read);
    const auto damage = history.damage();
    for (const auto& sentence : damage) {
      findings.push_back({"The history is damaged: " + sentence, remedyForDamage()});
    }
    if (!damage.empty()) return findings;
    if (access(path.c_str(), W_OK) != 0) {
      findings.push_back({"The history " + path + " is read-only.",
                          "Give yourself the right to write: chmod u+w \"" + path + "\""});
    } else {
      findings.push_back({"The history " + path + " is sound.", ""});
    }
    findings.push_back(openSessionsFinding(host, history));
  } catch (const NoHistory&) {
    findings.push_back({"There is no history yet; \"Tessum record\" begins one.", ""});
  } catch (const DatabaseError& error) {
    findings.push_back({"The history " + path + ": " + error.description(), remedy(error)});
  } catch (const std::system_error& error) {
    findings.push_back({error.what(), "Look at the file's permissions."});
  }
  return findings;
}

}  // namespace tessum
