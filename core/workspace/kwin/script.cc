#include "core/workspace/kwin/script.h"

namespace tessum {
namespace {

// KWin 6 calls "window" what KWin 5 calls "client".
constexpr char kBody[] = R"js(
const changes = ['captionChanged', 'desktopFileNameChanged', 'windowClassChanged'];
let watched = null;

function text(value) {
  return value === undefined || value === null ? '' : String(value);
}

function tell() {
  const parts = watched === null ? ['', '', '', '', ''] :
      [watched.desktopFileName, watched.resourceName, watched.resourceClass, watched.caption,
       watched.pid].map(text);
  callDBus(destination, path, interfaceName, member, ...parts);
}

function follow(window) {
  for (const change of changes) {
    if (watched !== null && watched[change]) watched[change].disconnect(tell);
  }
  watched = window === undefined ? null : window;
  for (const change of changes) {
    if (watched !== null && watched[change]) watched[change].connect(tell);
  }
  tell();
}

if (workspace.windowActivated) {
  workspace.windowActivated.connect(follow);
  follow(workspace.activeWindow);
} else {
  workspace.clientActivated.connect(follow);
  follow(workspace.activeClient);
}
)js";

// No part of a name on the bus needs quoting.
std::string constant(const std::string& name, const std::string& value) {
  return "const " + name + " = '" + value + "';\n";
}

}  // namespace

std::string kwinScript(const std::string& destination) {
  return constant("destination", destination) + constant("path", kKWinScriptPath) +
         constant("interfaceName", kKWinScriptInterface) + constant("member", kKWinScriptMember) +
         kBody;
}

}  // namespace tessum
