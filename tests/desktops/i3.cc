#include "tests/desktops/i3.h"

#include <stdexcept>

#include "tests/support/eventually.h"

namespace tessum {

I3::I3() {
  server_ = start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1280x800x24"});
  const auto display = server_->readLine();
  if (!display) throw std::runtime_error("no display: " + server_->errors());
  setDisplays("", ":" + *display);
  writeFile(home().file("i3.conf"), "# i3 config file (v4)\nipc-socket " + socket() + "\n");
  launch(kProgram, {"-c", home().file("i3.conf")}, {}, [this] { return answers(); });
}

// The server may end only when nothing needs it any more.
I3::~I3() {
  kill();
}

void I3::restart() const {
  command("restart");
  if (!eventually([this] { return answers(); })) throw std::runtime_error("i3 does not come back");
}

bool I3::answers() const {
  const auto question = start("i3-msg", {"--socket", socket(), "--type", "get_version"});
  return question->wait() == kSuccess;
}

}  // namespace tessum
