#include "core/http/http_request.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "core/base/text.h"
#include "core/http/http_headers.h"

namespace tessum {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::string_view kContentLength = "content-length:";

// The size that the value of Content-Length declares: 0 when it is negative, and when it is not a
// decimal number of 64 bits.
std::size_t declaredSize(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return 0;
  return static_cast<std::size_t>(std::max<std::int64_t>(value, 0));
}

}  // namespace

std::optional<HTTPRequest> parseHTTPRequest(json::PaddedView bytes) {
  return HTTPRequestParser().parse(bytes);
}

std::optional<HTTPRequest> HTTPRequestParser::parse(json::PaddedView arrived) {
  const std::string_view bytes = arrived.text();
  if (state_ == State::inHead) {
    const std::size_t end = bytes.find(kHeadEnd, searched_);
    if (end == std::string_view::npos) {
      searched_ = bytes.size() - std::min(bytes.size(), kHeadEnd.size() - 1);
      return std::nullopt;
    }
    readHead(bytes.substr(0, end));
    bodyStart_ = end + kHeadEnd.size();
  }
  if (state_ == State::unreadable || bytes.size() - bodyStart_ < bodySize_) return std::nullopt;
  return HTTPRequest{bytes.substr(0, methodEnd_),
                     bytes.substr(methodEnd_ + 1, pathEnd_ - methodEnd_ - 1),
                     arrived.substr(bodyStart_, bodySize_)};
}

std::string_view HTTPRequestParser::head(json::PaddedView bytes) const {
  if (state_ != State::inBody) return {};
  return bytes.text().substr(0, bodyStart_ - kHeadEnd.size());
}

void HTTPRequestParser::readHead(std::string_view head) {
  state_ = State::unreadable;
  if (validUtf8(head) != head) return;

  const std::string_view requestLine = head.substr(0, head.find(kLineEnd));
  methodEnd_ = requestLine.find(' ');
  if (methodEnd_ == std::string_view::npos) return;
  pathEnd_ = std::min(requestLine.find(' ', methodEnd_ + 1), requestLine.size());

  for (const std::string_view value : headerValues(head, kContentLength)) {
    bodySize_ = declaredSize(value);
  }
  state_ = State::inBody;
}

}  // namespace tessum
