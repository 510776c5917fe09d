#include "core/http/http_request.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace tessum {
namespace {

using std::string_literals::operator""s;

// A request that owns its texts.
struct Parts {
  std::string method;
  std::string path;
  std::string body;

  friend bool operator==(const Parts&, const Parts&) = default;
  friend void PrintTo(const Parts& parts, std::ostream* out) {
    *out << testing::PrintToString(std::tie(parts.method, parts.path, parts.body));
  }
};

std::optional<Parts> partsOf(const std::optional<HTTPRequest>& request) {
  if (!request) return std::nullopt;
  return Parts{std::string(request->method), std::string(request->path),
               std::string(request->body.text())};
}

std::optional<Parts> parsed(std::string_view bytes) {
  return partsOf(parseHTTPRequest(json::PaddedString(bytes).view()));
}

std::optional<Parts> parsedBy(HTTPRequestParser& parser, std::string_view bytes) {
  return partsOf(parser.parse(json::PaddedString(bytes).view()));
}

struct Case {
  std::string bytes;
  std::optional<Parts> request;
};

std::string withLength(const std::string& line) {
  return "POST /mcp HTTP/1.1\r\n" + line + "\r\n\r\nabcdef";
}

Parts post(const std::string& body) {
  return {"POST", "/mcp", body};
}

const std::vector<Case>& cases() {
  static const std::vector<Case> kCases = {
      // Complete requests.
      {"GET / HTTP/1.1\r\n\r\n", Parts{"GET", "/", ""}},
      {"GET / HTTP/1.1\r\nHost: localhost\r\nAccept: */*\r\n\r\n", Parts{"GET", "/", ""}},
      {"POST /mcp HTTP/1.1\r\nContent-Length: 4\r\n\r\nbody", post("body")},
      {"POST /mcp HTTP/1.1\r\n\r\n", post("")},
      {"\r\nGET / HTTP/1.1\r\n\r\n", std::nullopt},

      // The request line.
      {"get /Path?query=1#x HTTP/1.1\r\n\r\n", Parts{"get", "/Path?query=1#x", ""}},
      {"GET /\r\n\r\n", Parts{"GET", "/", ""}},
      {"GET  / HTTP/1.1\r\n\r\n", Parts{"GET", "", ""}},
      {"GET \r\n\r\n", Parts{"GET", "", ""}},
      {" GET / HTTP/1.1\r\n\r\n", Parts{"", "GET", ""}},
      {" \r\n\r\n", Parts{"", "", ""}},
      {"GET / HTTP/1.1 and more words\r\n\r\n", Parts{"GET", "/", ""}},
      {"GET\t/ HTTP/1.1\r\n\r\n", Parts{"GET\t/", "HTTP/1.1", ""}},
      {"GET /a\nb\rc HTTP/1.1\r\n\r\n", Parts{"GET", "/a\nb\rc", ""}},
      {"GET /\xC3\xA9 HTTP/1.1\r\n\r\n", Parts{"GET", "/\xC3\xA9", ""}},
      {"G\0T / HTTP/1.1\r\n\r\n"s, Parts{"G\0T"s, "/", ""}},
      {"GET\r\n\r\n", std::nullopt},
      {"\r\n\r\n", std::nullopt},
      {"\r\n\r\nGET / HTTP/1.1\r\n\r\n", std::nullopt},
      {"GET\r\n/ HTTP/1.1\r\n\r\n", std::nullopt},

      // Heads that have not ended.
      {"", std::nullopt},
      {"GET / HTTP/1.1", std::nullopt},
      {"GET / HTTP/1.1\r\n", std::nullopt},
      {"GET / HTTP/1.1\r\n\r", std::nullopt},
      {"GET / HTTP/1.1\n\n", std::nullopt},
      {"GET / HTTP/1.1\r\n \r\n", std::nullopt},
      {"GET / HTTP/1.1\r\r\n\n", std::nullopt},

      // Bytes that are not UTF-8 make the head unreadable; the body may hold any.
      {"GET /\xFF HTTP/1.1\r\n\r\n", std::nullopt},
      {"GET / HTTP/1.1\r\nName: \xC3\r\n\r\n", std::nullopt},
      {"GET / HTTP/1.1\r\nName: \xED\xA0\x80\r\n\r\n", std::nullopt},
      {"GET / HTTP/1.1\r\nName: \xEF\xBF\xBD\r\n\r\n", Parts{"GET", "/", ""}},
      {"POST /mcp HTTP/1.1\r\nContent-Length: 2\r\n\r\n\xFF\xC3", post("\xFF\xC3")},

      // The length of the body.
      {withLength("Content-Length: 3"), post("abc")},
      {withLength("Content-Length: 6"), post("abcdef")},
      {withLength("Content-Length: 7"), std::nullopt},
      {withLength("Content-Length: 0"), post("")},
      {withLength("CONTENT-LENGTH: 3"), post("abc")},
      {withLength("cOnTeNt-LeNgTh:3"), post("abc")},
      {withLength("Content-Length: \t 3 \t "), post("abc")},
      {withLength("Content-Length: +3"), post("abc")},
      {withLength("Content-Length: 0003"), post("abc")},
      {withLength("Content-Length: -3"), post("")},
      {withLength("Content-Length: -0"), post("")},
      {withLength("Content-Length: abc"), post("")},
      {withLength("Content-Length: 3abc"), post("")},
      {withLength("Content-Length: 3 3"), post("")},
      {withLength("Content-Length: 3.0"), post("")},
      {withLength("Content-Length: 0x3"), post("")},
      {withLength("Content-Length: +"), post("")},
      {withLength("Content-Length: -"), post("")},
      {withLength("Content-Length: +-3"), post("")},
      {withLength("Content-Length: ++3"), post("")},
      {withLength("Content-Length: + 3"), post("")},
      {withLength("Content-Length:"), post("")},
      {withLength("Content-Length: \xD9\xA3"), post("")},  // an Arabic three
      {withLength("Content-Length: 3\r"), post("")},
      {withLength("Content-Length: 9223372036854775807"), std::nullopt},
      {withLength("Content-Length: 9223372036854775808"), post("")},
      {withLength("Content-Length: 18446744073709551615"), post("")},
      {withLength("Content-Length: 99999999999999999999999999"), post("")},
      {withLength("Content-Length: -9223372036854775808"), post("")},
      {withLength("Content-Length: -9223372036854775809"), post("")},
      {withLength("Content-Length : 3"), post("")},
      {withLength(" Content-Length: 3"), post("")},
      {withLength("X-Content-Length: 3"), post("")},
      {withLength("Content-Lengt: 3"), post("")},
      {withLength("Content_Length: 3"), post("")},
      {withLength("Name: a\nContent-Length: 3"), post("")},
      {"Content-Length: 3 HTTP/1.1\r\n\r\nabc", Parts{"Content-Length:", "3", ""}},

      // The last length counts, even when it is not a number.
      {withLength("Content-Length: 5\r\nContent-Length: 2"), post("ab")},
      {withLength("Content-Length: 99\r\ncontent-length: 2"), post("ab")},
      {withLength("Content-Length: 5\r\nContent-Length: none"), post("")},
      {withLength("Content-Length: 5\r\nHost: x"), post("abcde")},

      // Terminators inside the body are part of it.
      {"POST /mcp HTTP/1.1\r\nContent-Length: 8\r\n\r\n\r\n\r\n\r\n\r\n", post("\r\n\r\n\r\n\r\n")},
      {"POST /mcp HTTP/1.1\r\n\r\nGET / HTTP/1.1\r\n\r\n", post("")},
  };
  return kCases;
}

std::string described(const std::string& bytes) {
  return testing::PrintToString(bytes);
}

TEST(ParseHTTPRequest, FindsTheRequestInTheBytes) {
  for (const Case& each : cases()) {
    EXPECT_EQ(parsed(each.bytes), each.request) << described(each.bytes);
  }
}

// The bytes are moved before each call, as a growing buffer moves them.
TEST(HTTPRequestParser, FindsTheSameWhereverTheBytesAreCut) {
  for (const Case& each : cases()) {
    for (std::size_t cut = 0; cut <= each.bytes.size(); ++cut) {
      HTTPRequestParser parser;
      const std::string first = each.bytes.substr(0, cut);
      const std::string second = each.bytes;
      const auto early = parsedBy(parser, first);
      EXPECT_EQ(early, parsed(first)) << described(first);
      if (early) continue;
      EXPECT_EQ(parsedBy(parser, second), each.request) << described(second) << " cut at " << cut;
    }
  }
}

TEST(HTTPRequestParser, FindsTheSameByteByByte) {
  for (const Case& each : cases()) {
    HTTPRequestParser parser;
    std::optional<Parts> found;
    std::string arrived;
    for (const char byte : each.bytes) {
      arrived += byte;
      found = parsedBy(parser, arrived);
      EXPECT_EQ(found, parsed(arrived)) << described(arrived);
      if (found) break;
    }
    EXPECT_EQ(found, each.request) << described(each.bytes);
  }
}

TEST(HTTPRequestParser, KnowsWhenNoFurtherBytesHelp) {
  const auto isUnreadable = [](std::string_view bytes) {
    HTTPRequestParser parser;
    EXPECT_EQ(parsedBy(parser, bytes), std::nullopt);
    return parser.isUnreadable();
  };
  EXPECT_TRUE(isUnreadable("GET\r\n\r\n"));
  EXPECT_TRUE(isUnreadable("\r\n\r\n"));
  EXPECT_TRUE(isUnreadable("GET / \xFF\r\n\r\n"));
  EXPECT_FALSE(isUnreadable("GET / \xFF\r\n"));  // the head may hold anything until it ends
  EXPECT_FALSE(isUnreadable(""));
  EXPECT_FALSE(isUnreadable("POST / HTTP/1.1\r\nContent-Length: 1\r\n\r\n"));
}

}  // namespace
}  // namespace tessum
