// The server's counter IDLETIME holds the milliseconds since the last input, and an alarm fires
// when it reaches a value. There is one alarm at a time: the first fires when the counter is at the
// threshold or above, the next when it is below, and so on. The alarms compare the counter with the
// threshold rather than wait for it to cross, so an alarm that is set after the crossing still
// fires.

#include <xcb/sync.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "core/workspace/x11/connection.h"
#include "core/workspace/x11/idle_source.h"
#include "core/workspace/x11/server_time.h"
#include "core/workspace/x11/system_counters.h"

namespace tessum {
namespace {

xcb_sync_int64_t int64Of(std::int64_t value) {
  return {static_cast<std::int32_t>(value >> 32), static_cast<std::uint32_t>(value)};
}

double secondsOf(const xcb_sync_int64_t& milliseconds) {
  return (milliseconds.hi * 4294967296.0 + milliseconds.lo) / kMillisecondsPerSecond;
}

// The server must know the client's version of the extension before it answers anything else.
bool hasSync(xcb_connection_t* connection) {
  const auto* extension = xcb_get_extension_data(connection, &xcb_sync_id);
  if (extension == nullptr || extension->present == 0) return false;
  const auto cookie =
      xcb_sync_initialize(connection, XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION);
  return X11Owned<xcb_sync_initialize_reply_t>(
             xcb_sync_initialize_reply(connection, cookie, nullptr)) != nullptr;
}

std::optional<std::uint32_t> idleCounter(xcb_connection_t* connection) {
  const auto cookie = xcb_sync_list_system_counters(connection);
  const X11Owned<xcb_sync_list_system_counters_reply_t> reply(
      xcb_sync_list_system_counters_reply(connection, cookie, nullptr));
  if (!reply) return std::nullopt;
  const auto* list = reinterpret_cast<const char*>(reply.get() + 1);
  return counterNamed("IDLETIME", {list, std::size_t{reply->length} * 4});
}

class X11IdleCounter final : public IdleSource {
 public:
  X11IdleCounter(SystemMainLoop& loop, const SteadyClock& clock, X11Handle connection,
                 std::uint32_t counter)
      : loop_(loop),
        time_(clock),
        connection_(std::move(connection)),
        counter_(counter),
        alarmEvent_(xcb_get_extension_data(connection_.get(), &xcb_sync_id)->first_event +
                    XCB_SYNC_ALARM_NOTIFY),
        watch_(loop.watchReadable(xcb_get_file_descriptor(connection_.get()),
                                  [this] { readEvents(); })) {}

  ~X11IdleCounter() override { loop_.unwatch(watch_); }

  void watch(double seconds, Handlers handlers) override {
    threshold_ = std::max(std::llround(seconds * kMillisecondsPerSecond), 1LL);
    handlers_ = std::move(handlers);
    isIdle_ = false;
    setAlarm();
  }

 private:
  // Makes a new alarm each time: its number distinguishes its event from one of the previous alarm
  // that is still on its way.
  void setAlarm() {
    xcb_connection_t* const connection = connection_.get();
    if (alarm_ != 0) xcb_sync_destroy_alarm(connection, alarm_);
    alarm_ = xcb_generate_id(connection);
    const xcb_sync_create_alarm_value_list_t alarm{
        .counter = counter_,
        .valueType = XCB_SYNC_VALUETYPE_ABSOLUTE,
        .value = int64Of(isIdle_ ? threshold_ - 1 : threshold_),
        .testType = static_cast<std::uint32_t>(isIdle_ ? XCB_SYNC_TESTTYPE_NEGATIVE_COMPARISON
                                                       : XCB_SYNC_TESTTYPE_POSITIVE_COMPARISON),
        .delta = int64Of(0),
        .events = 1};
    xcb_sync_create_alarm_aux(connection, alarm_,
                              XCB_SYNC_CA_COUNTER | XCB_SYNC_CA_VALUE_TYPE | XCB_SYNC_CA_VALUE |
                                  XCB_SYNC_CA_TEST_TYPE | XCB_SYNC_CA_DELTA | XCB_SYNC_CA_EVENTS,
                              &alarm);
    xcb_flush(connection);
  }

  void readEvents() {
    xcb_connection_t* const connection = connection_.get();
    while (const X11Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
      if (event->response_type != alarmEvent_) continue;
      const auto* alarm = reinterpret_cast<const xcb_sync_alarm_notify_event_t*>(event.get());
      if (alarm->alarm == alarm_) goOff(*alarm);
    }
    if (xcb_connection_has_error(connection) != 0) loop_.unwatch(watch_);
  }

  void goOff(const xcb_sync_alarm_notify_event_t& alarm) {
    const Moment input = movedBy(time_.ofEvent(alarm.timestamp), -secondsOf(alarm.counter_value));
    isIdle_ = !isIdle_;
    setAlarm();
    const auto handler = isIdle_ ? handlers_.onIdle : handlers_.onActive;  // it may call watch()
    handler(input);
  }

  SystemMainLoop& loop_;
  X11ServerTime time_;
  const X11Handle connection_;
  const std::uint32_t counter_;
  const int alarmEvent_;
  const SystemMainLoop::WatchToken watch_;
  std::int64_t threshold_ = 0;  // in milliseconds
  Handlers handlers_;
  bool isIdle_ = false;  // as last reported
  std::uint32_t alarm_ = 0;
};

}  // namespace

std::unique_ptr<IdleSource> openX11IdleCounter(SystemMainLoop& loop, const SteadyClock& clock,
                                               const std::string& display) {
  X11Handle connection(xcb_connect(display.c_str(), nullptr));
  if (!hasSync(connection.get())) return nullptr;
  const auto counter = idleCounter(connection.get());
  if (!counter) return nullptr;
  return std::make_unique<X11IdleCounter>(loop, clock, std::move(connection), *counter);
}

}  // namespace tessum
