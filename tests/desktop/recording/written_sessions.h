// Records the sessions that the recorder's parts write.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/store/session_writer.h"

namespace tessum {

// Keeps the current state of each session; stores an end before the start unchanged.
class WrittenSessions final : public SessionWriter {
 public:
  std::int64_t insert(const Activity& activity) override {
    sessions.push_back(activity);
    return static_cast<std::int64_t>(sessions.size());
  }
  void updateEndTime(std::int64_t id, Date end) override { at(id).endTime = end; }
  void updateTitle(std::int64_t id, const std::string& title) override {
    at(id).title = title;
    ++titleWrites;
  }

  // Each session as "application|title|begin|end" in whole seconds since `start`.
  [[nodiscard]] std::vector<std::string> rows(Date start = {}) const {
    std::vector<std::string> rows;
    const auto seconds = [&](Date date) {
      return std::to_string(static_cast<long>(secondsBetween(start, date)));
    };
    for (const Activity& session : sessions) {
      rows.push_back(session.appName + "|" + session.title.value_or("-") + "|" +
                     seconds(session.startTime) + "|" +
                     (session.endTime ? seconds(*session.endTime) : "open"));
    }
    return rows;
  }

  std::vector<Activity> sessions;
  int titleWrites = 0;

 private:
  Activity& at(std::int64_t id) { return sessions.at(static_cast<std::size_t>(id - 1)); }
};

}  // namespace tessum
