#include "core/fetch/fetch_part_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessum {
namespace {

using Body = FetchPartReader::Body;

std::string part(FetchPart kind, const std::string& content) {
  const FetchPartHeader header{kind, static_cast<std::uint32_t>(content.size())};
  return std::string(reinterpret_cast<const char*>(&header), sizeof header) + content;
}

struct Read {
  FetchPart kind;
  std::uint32_t size;
  std::string content;

  friend bool operator==(const Read&, const Read&) = default;
};

// What a reader finds in `bytes` that come in pieces of `length`.
std::vector<Read> partsIn(std::string_view bytes, std::size_t length, Body body) {
  FetchPartReader reader(body);
  std::vector<Read> parts;
  for (std::size_t at = 0; at < bytes.size(); at += length) {
    reader.add(bytes.substr(at, length));
    while (const auto found = reader.next()) {
      parts.push_back({found->kind, found->size, std::string(found->content)});
    }
  }
  return parts;
}

TEST(FetchPartReader, FindsThePartsHoweverTheBytesCome) {
  const std::string bytes = part(FetchPart::url, "https://a/") + part(FetchPart::body, "12345") +
                            part(FetchPart::written, "") + part(FetchPart::success, "");
  const std::vector<Read> wanted{{FetchPart::url, 10, "https://a/"},
                                 {FetchPart::body, 5, "12345"},
                                 {FetchPart::written, 0, ""},
                                 {FetchPart::success, 0, ""}};
  for (std::size_t length = 1; length <= bytes.size(); ++length) {
    EXPECT_EQ(partsIn(bytes, length, Body::amongTheParts), wanted) << length;
  }
}

TEST(FetchPartReader, DoesNotExpectABodyThatIsElsewhere) {
  const FetchPartHeader body{FetchPart::body, 5};
  const std::string bytes =
      std::string(reinterpret_cast<const char*>(&body), sizeof body) + part(FetchPart::written, "");
  const std::vector<Read> wanted{{FetchPart::body, 5, ""}, {FetchPart::written, 0, ""}};
  EXPECT_EQ(partsIn(bytes, 3, Body::elsewhere), wanted);
}

TEST(FetchPartReader, WaitsForTheRestOfAPart) {
  const std::string bytes = part(FetchPart::failure, "why");
  FetchPartReader reader(Body::elsewhere);
  EXPECT_FALSE(reader.next().has_value());
  reader.add(std::string_view(bytes).substr(0, bytes.size() - 1));
  EXPECT_FALSE(reader.next().has_value());
  EXPECT_FALSE(reader.next().has_value());
  reader.add("y");
  EXPECT_EQ(reader.next()->content, "why");
  EXPECT_FALSE(reader.next().has_value());
}

TEST(FetchPartReader, TakesTheLongestPartAndNoLonger) {
  const std::string longest(kLargestFetchPart, 'x');
  EXPECT_EQ(partsIn(part(FetchPart::url, longest), 65536, Body::elsewhere).size(), 1u);
  for (const Body body : {Body::amongTheParts, Body::elsewhere}) {
    for (const FetchPart kind : {FetchPart::url, FetchPart::body}) {
      const std::string tooLong = part(kind, longest + "x");
      EXPECT_THROW(partsIn(tooLong, 65536, body), BadFetchPart);
      EXPECT_THROW(partsIn(tooLong.substr(0, sizeof(FetchPartHeader)), 65536, body), BadFetchPart)
          << "before the content comes";
    }
  }
}

TEST(FetchPartReader, RefusesPartsOfAnotherKind) {
  EXPECT_THROW(partsIn(part(static_cast<FetchPart>(7), ""), 100, Body::elsewhere), BadFetchPart);
  EXPECT_THROW(partsIn("HTTP/1.1 200 OK\r\n\r\n", 100, Body::elsewhere), BadFetchPart);
}

}  // namespace
}  // namespace tessum
