// The server's events tell that a property changed, but not to what, and its value can only be
// asked for. The extension RECORD gives the requests themselves, in the order in which the server
// carried them out. Only requests that write properties are recorded, and only those of one client
// and of the reader; the latter never writes any, but to leave its mark: it removes a property that
// does not exist, and once the mark is in the log, so is all that came before it.
//
// A server keeps what is recorded until it has something else to send as well, so the mark comes
// with a question. Should one keep it all the same, there is no log, rather than no end of waiting.
//
// The recording takes a connection of its own, on which nothing else can be asked for once it has
// begun.

#include "core/workspace/x11/property_log.h"

#include <poll.h>
#include <xcb/record.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstring>
#include <utility>

namespace tessum {
namespace {

constexpr int kPatienceMilliseconds = 10'000;

// What a reply of the recording is about.
constexpr std::uint8_t kFromClient = 1;
constexpr std::uint8_t kStartOfData = 4;

std::uint32_t numberAt(std::string_view bytes, std::size_t position) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes.data() + position, sizeof number);
  return number;
}

// What follows the first word of a request, in words: the window, the property; and in a value its
// type, the bits per item, the number of items, and the items.
std::optional<X11PropertyWrite> propertyWrite(std::uint8_t code, std::string_view body) {
  if (code == XCB_DELETE_PROPERTY && body.size() >= 8) {
    return X11PropertyWrite{numberAt(body, 0), numberAt(body, 4), std::nullopt};
  }
  if (code != XCB_CHANGE_PROPERTY || body.size() < 20) return std::nullopt;
  X11PropertyWrite write{numberAt(body, 0), numberAt(body, 4), std::nullopt};
  const bool hasNumber = body[12] == 32 && numberAt(body, 16) > 0 && body.size() >= 24;
  if (hasNumber) write.number = numberAt(body, 20);
  return write;
}

}  // namespace

std::vector<X11PropertyWrite> propertyWrites(std::string_view requests) {
  std::vector<X11PropertyWrite> writes;
  while (requests.size() >= 4) {
    std::uint16_t shortLength = 0;
    std::memcpy(&shortLength, requests.data() + 2, sizeof shortLength);
    // A long request has its length in a second word.
    const std::size_t head = shortLength == 0 ? 8 : 4;
    if (requests.size() < head) break;
    const std::size_t words = shortLength == 0 ? numberAt(requests, 4) : shortLength;
    if (words * 4 < head || words * 4 > requests.size()) break;
    const auto code = static_cast<std::uint8_t>(requests[0]);
    const auto write = propertyWrite(code, requests.substr(head, words * 4 - head));
    if (write) writes.push_back(*write);
    requests.remove_prefix(words * 4);
  }
  return writes;
}

std::unique_ptr<X11PropertyLog> X11PropertyLog::open(SystemMainLoop& loop,
                                                     const std::string& display,
                                                     X11Connection& reader, std::uint32_t window,
                                                     std::uint32_t property) {
  X11Handle connection(xcb_connect(display.c_str(), nullptr));
  std::unique_ptr<X11PropertyLog> log(
      new X11PropertyLog(loop, reader, std::move(connection), property));
  if (!log->begin(window)) log.reset();
  return log;
}

X11PropertyLog::X11PropertyLog(SystemMainLoop& loop, X11Connection& reader, X11Handle connection,
                               std::uint32_t property)
    : loop_(loop), reader_(reader), connection_(std::move(connection)), property_(property) {}

X11PropertyLog::~X11PropertyLog() {
  end();
}

bool X11PropertyLog::begin(std::uint32_t window) {
  xcb_connection_t* const connection = connection_.get();
  const auto* extension = xcb_get_extension_data(connection, &xcb_record_id);
  if (extension == nullptr || extension->present == 0) return false;
  const std::array<xcb_record_client_spec_t, 2> clients{window, reader_.firstNumber()};
  xcb_record_range_t range{};
  range.core_requests = {XCB_CHANGE_PROPERTY, XCB_DELETE_PROPERTY};
  constexpr xcb_record_element_header_t kNoHeaders = 0;
  const std::uint32_t context = xcb_generate_id(connection);
  xcb_record_create_context(connection, context, kNoHeaders, clients.size(), 1, clients.data(),
                            &range);
  request_ = xcb_record_enable_context(connection, context).sequence;
  xcb_flush(connection);
  watch_ = loop_.watchReadable(xcb_get_file_descriptor(connection), [this] { readReplies(); });
  catchUp();
  return watch_.has_value();
}

std::vector<std::uint32_t> X11PropertyLog::take() {
  hasCaughtUp_ = false;
  if (watch_) reader_.mark();
  catchUp();
  return std::exchange(values_, {});
}

void X11PropertyLog::catchUp() {
  readReplies();
  while (watch_ && !hasCaughtUp_) {
    pollfd readable{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
    if (poll(&readable, 1, kPatienceMilliseconds) == 0) end();
    readReplies();
  }
}

// Also what is not to be kept: it would pile up otherwise.
void X11PropertyLog::readReplies() {
  void* reply = nullptr;
  xcb_generic_error_t* error = nullptr;
  while (watch_ && xcb_poll_for_reply(connection_.get(), request_, &reply, &error) != 0) {
    const X11Reply ownedError(std::exchange(error, nullptr));
    add(X11Reply(std::exchange(reply, nullptr)));
  }
}

void X11PropertyLog::add(const X11Reply& reply) {
  const auto* recorded = static_cast<const xcb_record_enable_context_reply_t*>(reply.get());
  if (recorded != nullptr && recorded->category == kStartOfData) {
    hasCaughtUp_ = true;
    return;
  }
  const bool isOfThisByteOrder = recorded != nullptr && recorded->client_swapped == 0;
  if (!isOfThisByteOrder || recorded->category != kFromClient) {
    end();
    return;
  }
  const std::string_view requests(
      reinterpret_cast<const char*>(xcb_record_enable_context_data(recorded)),
      static_cast<std::size_t>(xcb_record_enable_context_data_length(recorded)));
  for (const X11PropertyWrite& write : propertyWrites(requests)) {
    if (write.window != reader_.rootWindow()) continue;
    if (write.property == property_) values_.push_back(write.number.value_or(0));
    if (write.property == reader_.atoms().mark) hasCaughtUp_ = true;
  }
}

void X11PropertyLog::end() {
  if (watch_) loop_.unwatch(*watch_);
  watch_.reset();
  connection_.reset();
}

}  // namespace tessum
