// A file that comes to be bit by bit and gets its name only when it is whole.

#pragma once

#include <string>

#include "core/platform/descriptor.h"

namespace tessum {

// A new file for the user alone (0600) under a hidden name of its own; removed when the object
// goes, unless it was moved. Failures are thrown as std::system_error with the path in the text.
// One thread at a time.
class TemporaryFile {
 public:
  // Makes the file in `folder`, which must exist.
  explicit TemporaryFile(const std::string& folder);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // For writing to it.
  [[nodiscard]] int descriptor() const { return file_.number(); }

  // Gives the file, which is then complete, the name `path` in the same file system, in one step:
  // another file of that name is replaced, and is there until then.
  void moveTo(const std::string& path);

 private:
  std::string path_;  // empty once it was moved
  Descriptor file_;
};

}  // namespace tessum
