// Where the monitor writes sessions to.

#pragma once

#include <cstdint>
#include <string>

#include "core/base/date.h"
#include "core/store/records.h"

namespace tessum {

// What cannot be written is thrown as DatabaseError. Not thread-safe.
class SessionWriter {
 public:
  virtual ~SessionWriter() = default;

  // Stores `activity`, whose id is ignored, and returns its id.
  virtual std::int64_t insert(const Activity& activity) = 0;

  // Sets the end or the title of a session. An id that does not exist is no error.
  virtual void updateEndTime(std::int64_t id, Date end) = 0;
  virtual void updateTitle(std::int64_t id, const std::string& title) = 0;
};

}  // namespace tessum
