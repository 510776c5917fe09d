// How the server treats its standard streams and its data folder.

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/child_process.h"
#include "tests/support/server_program.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

constexpr char kInitialize[] = R"({"jsonrpc":"2.0","id":1,"method":"initialize"})";
constexpr char kUnknown[] = R"({"jsonrpc":"2.0","id":2,"method":"unknown"})";

class Stdio : public testing::Test {
 protected:
  [[nodiscard]] ChildProcess::Options options() const {
    return {.arguments = {},
            .environment = {"HOME=" + folder_.path(), "XDG_DATA_HOME=" + folder_.file("data")},
            .prepare = {}};
  }

  [[nodiscard]] std::string dataFolder() const {
#ifdef __APPLE__
    return folder_.file("Library/Application Support/Tessum");
#else
    return folder_.file("data/Tessum");
#endif
  }

  // All the output for all the input.
  std::string outputFor(const std::string& input) {
    ChildProcess server(serverProgram(), options());
    server.write(input);
    server.closeInput();
    std::string output = server.readRest();
    EXPECT_EQ(server.wait(), kSuccess);
    EXPECT_EQ(server.errors(), "");
    return output;
  }

  static long lines(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  }

  const TemporaryFolder folder_;
};

TEST_F(Stdio, EmptyInputCreatesTheStoreForTheUserAlone) {
  EXPECT_EQ(outputFor(""), "");
  EXPECT_EQ(readFile(dataFolder() + "/activities.db").substr(0, 15), "SQLite format 3");
  struct stat found {};
  ASSERT_EQ(stat(dataFolder().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777U, 0700U);
}

TEST_F(Stdio, AnExistingFolderAndStoreAreUsed) {
  outputFor("");
  EXPECT_EQ(lines(outputFor(std::string(kInitialize) + "\n")), 1);
}

TEST_F(Stdio, EmptyLinesGetNoAnswer) {
  const std::string output =
      outputFor("\n\n" + std::string(kInitialize) + "\n\n\r\n" + kUnknown + "\n\n");
  EXPECT_EQ(lines(output), 2);
}

TEST_F(Stdio, ALineOfOneBlankGetsAParseError) {
  const std::string output = outputFor(" \n");
  EXPECT_EQ(lines(output), 1);
  EXPECT_NE(output.find("\"code\":-32700"), std::string::npos);
}

TEST_F(Stdio, CarriageReturnsBelongToTheLineBreak) {
  const std::string message = kInitialize;
  EXPECT_EQ(outputFor(message + "\r\n"), outputFor(message + "\n"));
}

TEST_F(Stdio, TheLastLineNeedsNoLineBreak) {
  const std::string message = kInitialize;
  EXPECT_EQ(outputFor(message), outputFor(message + "\n"));
}

TEST_F(Stdio, EveryAnswerIsFlushedBeforeTheNextLineIsRead) {
  ChildProcess server(serverProgram(), options());
  for (int i = 0; i < 3; ++i) {
    server.writeLine(kInitialize);
    EXPECT_TRUE(server.readLine().has_value());
  }
  EXPECT_EQ(server.finish(), kSuccess);
}

TEST_F(Stdio, AnswersComeInTheOrderOfTheRequests) {
  std::string input;
  std::string expected;
  for (int id = 0; id < 500; ++id) {
    const std::string number = std::to_string(id);
    input += R"({"jsonrpc":"2.0","id":)" + number + R"(,"method":"x"})" + "\n";
    expected += R"({"jsonrpc":"2.0","id":)" + number +
                R"(,"error":{"code":-32601,"message":"Method not found: x"}})" + "\n";
  }
  EXPECT_EQ(outputFor(input), expected);
}

TEST_F(Stdio, ALineMayBeLongAndArriveInPieces) {
  const std::string method(3'000'000, 'm');
  ChildProcess server(serverProgram(), options());
  const std::string message = R"({"jsonrpc":"2.0","id":1,"method":")" + method + "\"}\n";
  for (std::size_t at = 0; at < message.size(); at += 70'001) {
    server.write(std::string_view(message).substr(at, 70'001));
  }
  EXPECT_EQ(server.readLine(), R"({"jsonrpc":"2.0","id":1,"error":{"code":-32601,"message":)"
                               R"("Method not found: )" +
                                   method + "\"}}");
  server.writeLine(kInitialize);
  EXPECT_TRUE(server.readLine().has_value());
  EXPECT_EQ(server.finish(), kSuccess);
}

TEST_F(Stdio, AStartThatFailsSaysWhyAndAnswersNothing) {
  writeFile(folder_.file("data"), "");  // a file where the folder should be
  writeFile(folder_.file("Library"), "");
  ChildProcess server(serverProgram(), options());
  EXPECT_EQ(server.readRest(), "");
  EXPECT_NE(server.finish(), kSuccess);
  EXPECT_NE(server.errors().find("Cannot create the folder"), std::string::npos);
}

TEST_F(Stdio, AStoreThatIsNoDatabaseStopsTheStart) {
  std::filesystem::create_directories(dataFolder());
  writeFile(dataFolder() + "/activities.db", std::string(4096, 'x'));
  ChildProcess server(serverProgram(), options());
  EXPECT_EQ(server.readRest(), "");
  EXPECT_NE(server.finish(), kSuccess);
  EXPECT_NE(server.errors().find("Failed to execute statement: " + sqliteText(SQLITE_NOTADB)),
            std::string::npos);
}

}  // namespace
}  // namespace tessum
