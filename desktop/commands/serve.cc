#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>

#include "core/base/limits.h"
#include "core/loop/system_main_loop.h"
#include "core/loop/termination_signals.h"
#include "core/platform/descriptor.h"
#include "core/platform/private_files.h"
#include "core/store/history.h"
#include "desktop/commands/commands.h"
#include "desktop/endpoint/http_endpoint.h"

namespace tessum {
namespace {

void serve(const Host& host, OpenTo openTo, bool endsWithInput) {
  SystemMainLoop loop;
  const TerminationSignals signals(loop, [&] { loop.quit(); });
  createPrivateFolders(host.locations.dataFolder());
  const HTTPEndpoint endpoint(historyPath(host.locations), limits::kDefaultPort, openTo, host.clock,
                              host.calendar);
  std::printf("%s\n", endpoint.url().c_str());
  std::fflush(stdout);
  if (endsWithInput) {
    loop.watchReadable(STDIN_FILENO, [&] {
      char byte = 0;
      if (retried([&] { return read(STDIN_FILENO, &byte, 1); }) <= 0) loop.quit();
    });
  }
  loop.run();
}

}  // namespace

void addServeCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("serve", "Answer assistants over HTTP");
  const auto isOpen = std::make_shared<bool>(false);
  command->add_flag(
      "--open", *isOpen,
      "to whoever asks: without a password, on every network this computer is in, and "
      "to any web page that you open");
  const auto endsWithInput = std::make_shared<bool>(false);
  command->add_flag("--until-input-ends", *endsWithInput)->group("");  // for the recorder
  command->footer(
      "Answers programs of this computer on port 7384 until it is stopped.\n"
      "Example:\n"
      "  Tessum serve");
  command->callback([=, &host] {
    serve(host, *isOpen ? OpenTo::everyone : OpenTo::thisComputer, *endsWithInput);
  });
}

}  // namespace tessum
