// The workspace of the desktop that the program was started on.

#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/loop/system_main_loop.h"
#include "core/workspace/workspace.h"

namespace tessum {

// The desktop does not let its applications be seen; what() says why.
class WorkspaceUnavailable : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

// What a workspace has to tell about itself.
struct WorkspaceNotice {
  std::string text;      // one sentence, for a person
  bool isFinal = false;  // the desktop is gone: no application will be seen any more
};

using WorkspaceNoticeHandler = std::function<void(const WorkspaceNotice&)>;

// A workspace driven by `loop`, which must outlive it; `notice` is called before this returns or
// from the loop. Throws WorkspaceUnavailable. Main thread only.
[[nodiscard]] std::unique_ptr<Workspace> openSystemWorkspace(SystemMainLoop& loop,
                                                             WorkspaceNoticeHandler notice);

}  // namespace tessum
