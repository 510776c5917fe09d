// Checks the history and its folder.

#include <unistd.h>

#include <exception>
#include <filesystem>
#include <system_error>

#include "core/platform/private_files.h"
#include "core/store/history.h"
#include "desktop/doctor/finding.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

// The folder itself or, if it is missing, the nearest existing one above it.
std::filesystem::path nearestExisting(std::filesystem::path path) {
  std::error_code ignored;
  while (path.has_relative_path() && !std::filesystem::exists(path, ignored)) {
    path = path.parent_path();
  }
  return path;
}

std::string countText(std::size_t count) {
  return counted(count, "session was", "sessions were");
}

// Sessions left open by a recorder that crashed, and sessions whose end could not be written.
std::vector<Finding> openSessionFindings(const Host& host, History& history) {
  constexpr auto kRemedy =
      "\"Tessum doctor --close-open\" ends them, where it is known when, or after a time that you "
      "give.";
  const RecorderState recorder = recorderState(host.locations);
  auto open = history.openSessions();
  if (currentSession(recorder, open)) open.pop_back();
  std::vector<Activity> cutOff;
  std::vector<Activity> unwritten;
  for (const Activity& session : open) {
    const bool isLast = !history.startOfNext(session);
    (isLast && !recorder.hasEnded ? cutOff : unwritten).push_back(session);
  }
  std::vector<Finding> findings;
  if (!cutOff.empty()) {
    findings.push_back({countText(cutOff.size()) +
                            " left open by a recorder that was cut off, on " +
                            dateText(cutOff.front().startTime) + ".",
                        kRemedy});
  }
  if (!unwritten.empty()) {
    findings.push_back({countText(unwritten.size()) +
                            " left open because the history could not be written, the oldest on " +
                            dateText(unwritten.front().startTime) + ".",
                        kRemedy});
  }
  if (findings.empty()) findings.push_back({"No session was left open.", ""});
  return findings;
}

}  // namespace

std::vector<Finding> checkFolder(const Host& host) {
  const std::string folder = host.locations.dataFolder();
  const auto existing = nearestExisting(folder);
  std::error_code ignored;
  if (!std::filesystem::is_directory(existing, ignored)) {
    return {{existing.string() + " is not a folder.",
             "Move it away so that the folder " + folder + " can be created."}};
  }
  if (access(existing.c_str(), R_OK | W_OK | X_OK) != 0) {
    return {{"The folder " + existing.string() + " cannot be written to.",
             "Give yourself write access: chmod u+rwx \"" + existing.string() + "\""}};
  }
  std::vector<Finding> findings{{"The folder " + folder + " can be written to.", ""}};
  for (const std::string& path : filesOpenToOthers(folder)) {
    findings.push_back({"Other users can read or change " + path + ".",
                        "\"Tessum doctor --mend\" closes it to them."});
  }
  return findings;
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
                          "Give yourself write access: chmod u+w \"" + path + "\""});
    } else {
      findings.push_back({"The history " + path + " is sound.", ""});
    }
    for (auto& finding : openSessionFindings(host, history)) findings.push_back(finding);
  } catch (const NoHistory&) {
    findings.push_back({"There is no history yet; \"Tessum record\" starts one.", ""});
  } catch (const DatabaseError& error) {
    findings.push_back({"The history " + path + ": " + error.description(), remedy(error)});
  } catch (const std::system_error& error) {
    findings.push_back({error.what(), "Look at the file's permissions."});
  }
  return findings;
}

}  // namespace tessum
