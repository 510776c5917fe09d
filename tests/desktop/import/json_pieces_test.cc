#include "desktop/import/json_pieces.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// The pieces of `text` below the first `levels`, each as its path and its text.
std::vector<std::string> piecesOf(const std::string& text, std::size_t levels) {
  const TemporaryFolder folder;
  writeFile(folder.file("x.json"), text);
  std::vector<std::string> pieces;
  readJsonPieces(folder.file("x.json"),
                 {.isEntered = [&](const JsonPath& path, bool) { return path.size() < levels; },
                  .take =
                      [&](const JsonPath& path, std::string_view piece) {
                        std::string line;
                        for (const std::string& key : path) line += "/" + key;
                        pieces.push_back(line + " " + std::string(piece));
                      }});
  return pieces;
}

TEST(JsonPieces, AreGivenWithTheKeysThatLeadThere) {
  EXPECT_EQ(
      piecesOf(R"({"a":[1, "x,]}" ,{"b":{"c":[]}}],"d" : null, "e":{}})", 2),
      (std::vector<std::string>{"/a/ 1", R"(/a/ "x,]}")", R"(/a/ {"b":{"c":[]}})", "/d null"}));
  EXPECT_EQ(piecesOf(R"([{"a":"\"}\\"},2.5])", 1),
            (std::vector<std::string>{R"(/ {"a":"\"}\\"})", "/ 2.5"}));
  EXPECT_EQ(piecesOf("\xEF\xBB\xBF [] \n", 3), std::vector<std::string>());
  EXPECT_EQ(piecesOf(" 12 ", 3), std::vector<std::string>{" 12"});
}

TEST(JsonPieces, OfGreatLengthAreGivenAsEmpty) {
  const std::string text = "[\"" + std::string(3 * kLongestPiece, 'x') + "\",7]";
  EXPECT_EQ(piecesOf(text, 1), (std::vector<std::string>{"/ ", "/ 7"}));
}

TEST(JsonPieces, OfWhatIsNoDocumentAreRefused) {
  for (const char* text : {"", " ", "{", "[1", "[1}", "{\"a\"}", "{\"a\":}", "{a:1}", "[1] 2",
                           "[[1]", "{\"a\":[1}", "\"x", "]", "{\"a\":1,", "[\"x]", "{1:2}"}) {
    EXPECT_THROW(static_cast<void>(piecesOf(text, 3)), BrokenFile) << text;
  }
  EXPECT_THROW(readJsonPieces("/nowhere/x.json", {}), BrokenFile);
}

}  // namespace
}  // namespace tessum
