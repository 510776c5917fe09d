// What "Tessum setup" has changed for the user, noted in a file so that "Tessum setup --undo" can
// take back exactly that.
//
// Each change is noted before it is made. A setup that is cut off therefore leaves at most a note
// of a change that was never made, and taking that back does nothing.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/host/host.h"

namespace tessum {

// One change.
struct SetupChange {
  enum class Kind {
    folder,          // made at `target`
    file,            // `target` holds `content`, and held `before`
    link,            // a symbolic link at `target` leads to `content`, and led to `before`
    service,         // the service `target` was started
    recorder,        // one was started; `content` tells of the one that ran before, if any
    shellExtension,  // the extension `target` of GNOME Shell was turned on
    assistant,       // Tessum was registered with the assistant `target`; where its entry replaced
                     // one, the assistant's file holds `content`, and held `before`
  };

  Kind kind = Kind::file;
  std::string target;
  std::string content = {};
  std::optional<std::string> before = {};  // absent where there was nothing

  friend bool operator==(const SetupChange&, const SetupChange&) = default;
};

// The noted changes, the oldest first. Every call that writes throws std::system_error. Not
// thread-safe.
class SetupChanges {
 public:
  // Reads the notes; without a file there are none. Throws std::system_error, and
  // std::runtime_error when the file does not hold notes. `host` must outlive it.
  explicit SetupChanges(const Host& host);

  [[nodiscard]] const std::vector<SetupChange>& all() const { return changes_; }

  // Notes a change, whose texts must be valid UTF-8; throws std::runtime_error where they are not.
  // One that repeats an earlier change of the same target takes its place, but what was there
  // before it stays noted.
  void add(SetupChange change);

  // Removes the note of a change that has been taken back.
  void remove(const SetupChange& change);

  // Removes the file of the notes; only folders may be left in them.
  void removeFile();

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Changes that are noted and made.

  // Makes the folder at `path` and those above it, each for the user alone.
  void makeFolders(const std::string& path);

  // Makes `bytes` the content of the file at `path`, and makes its folder.
  void makeFile(const std::string& path, const std::string& bytes);

  // Makes a symbolic link at `path` that leads to `target`, and makes its folder.
  void makeLink(const std::string& path, const std::string& target);

 private:
  void save() const;

  const Host& host_;
  const std::string path_;
  std::vector<SetupChange> changes_;
};

// Takes back a change of a folder, a file or a link. A folder with anything in it stays, and so
// does a file or a link that is no longer as it was made. Throws std::system_error.
void takeBackOnDisk(const SetupChange& change, const Host& host);

// Whether a file that was made has another content now.
[[nodiscard]] bool isEditedSince(const SetupChange& change, const Host& host);

}  // namespace tessum
