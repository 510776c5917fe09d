// How far the update checker is.

#pragma once

#include <string>
#include <variant>

#include "core/update/release_info.h"

namespace tessum {

namespace update_state {

// Nothing has been done yet.
struct Idle {
  friend bool operator==(const Idle&, const Idle&) = default;
};

// A check is running.
struct Checking {
  friend bool operator==(const Checking&, const Checking&) = default;
};

// The latest release is newer than the running version.
struct Available {
  ReleaseInfo release;

  friend bool operator==(const Available&, const Available&) = default;
};

// The latest release is not newer.
struct UpToDate {
  friend bool operator==(const UpToDate&, const UpToDate&) = default;
};

// A release's file is being downloaded.
struct Downloading {
  double fraction = 0;  // 0 to 1

  friend bool operator==(const Downloading&, const Downloading&) = default;
};

// The file is stored and goes to the opener.
struct ReadyToInstall {
  std::string url;  // the file URL

  friend bool operator==(const ReadyToInstall&, const ReadyToInstall&) = default;
};

// The last check or download failed.
struct Error {
  std::string message;  // for people

  friend bool operator==(const Error&, const Error&) = default;
};

}  // namespace update_state

using UpdateState =
    std::variant<update_state::Idle, update_state::Checking, update_state::Available,
                 update_state::UpToDate, update_state::Downloading, update_state::ReadyToInstall,
                 update_state::Error>;

}  // namespace tessum
