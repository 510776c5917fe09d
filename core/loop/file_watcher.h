// Reports when a file has changed.

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/loop/main_loop.h"

namespace tessum {

// Watches the file's folder and, if the file is a symbolic link, its target's folder: an editor may
// write to a file or replace it. The folder may be removed and made again. Main thread only.
class FileWatcher {
 public:
  // Calls `onChange` from `loop` when the file at the absolute path `path` may have been created,
  // written, replaced or removed; often more than once for one change. The file need not exist, but
  // its folder must at first. Throws std::system_error when the folder cannot be watched. `loop`
  // must outlive the object.
  FileWatcher(MainLoop& loop, const std::string& path, std::function<void()> onChange);
  ~FileWatcher();
  FileWatcher(const FileWatcher&) = delete;
  FileWatcher& operator=(const FileWatcher&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tessum
