#include <xcb/screensaver.h>
#include <xcb/xcb.h>

#include <optional>
#include <utility>

#include "core/workspace/polling_idle_source.h"
#include "core/workspace/x11/connection.h"
#include "core/workspace/x11/idle_source.h"

namespace tessum {
namespace {

std::optional<double> secondsSinceInput(xcb_connection_t* connection) {
  if (xcb_connection_has_error(connection) != 0) return std::nullopt;
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const auto cookie = xcb_screensaver_query_info(connection, root);
  const X11Owned<xcb_screensaver_query_info_reply_t> reply(
      xcb_screensaver_query_info_reply(connection, cookie, nullptr));
  if (!reply) return std::nullopt;
  return reply->ms_since_user_input / kMillisecondsPerSecond;
}

}  // namespace

std::unique_ptr<IdleSource> openX11IdlePoll(SystemMainLoop& loop, const SteadyClock& clock,
                                            const std::string& display) {
  const std::shared_ptr<xcb_connection_t> connection(
      X11Handle(xcb_connect(display.c_str(), nullptr)));
  const auto* extension = xcb_get_extension_data(connection.get(), &xcb_screensaver_id);
  if (extension == nullptr || extension->present == 0) return nullptr;
  return std::make_unique<PollingIdleSource>(
      loop, clock, [connection] { return secondsSinceInput(connection.get()); });
}

}  // namespace tessum
