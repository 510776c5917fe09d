// A file that gets its name only when it is complete.

#pragma once

#include <string>
#include <string_view>

#include "core/platform/descriptor.h"

namespace tessum {

// A new file for the user alone (0600) under a hidden name: a dot, its purpose, a dash and six
// characters. It is removed when the object is destroyed, unless it was moved. A process that is
// killed leaves it behind; the next file that is made for the same purpose in that folder removes
// it, as does removeTemporaryFilesLeftBehind(). Failures are thrown as std::system_error with the
// path in the text. One thread at a time.
class TemporaryFile {
 public:
  // Makes the file in `folder`, which must exist. `purpose` is a word that no other program begins
  // a hidden name with, since a file of that name that nobody has locked is removed.
  TemporaryFile(const std::string& folder, std::string_view purpose);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // For writing to it. Another process that has a copy of it may go on writing after this one has
  // ended; until it ends too, the file is not taken for one that was left behind.
  [[nodiscard]] int descriptor() const { return file_.number(); }

  // Gives the file, which is then complete, the name `path` in the same file system, in one step:
  // another file of that name is replaced, and is there until then.
  void moveTo(const std::string& path);

 private:
  std::string path_;  // empty once it was moved
  Descriptor file_;
};

// Removes the user's temporary files for `purpose` in `folder` whose processes have ended. Where
// the file system has no locks to tell by, those older than an hour. Throws nothing: what cannot be
// listed or removed stays. Any thread.
void removeTemporaryFilesLeftBehind(const std::string& folder, std::string_view purpose);

}  // namespace tessum
