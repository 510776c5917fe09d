#include "desktop/setup/start_files.h"

#include <gtest/gtest.h>

#include "tests/desktop/user.h"

namespace tessum {
namespace {

TEST(StartFiles, NameTheProgram) {
  const std::string program = "/opt/tessum/bin/Tessum";
  EXPECT_TRUE(contains(unitFor(program), "\nExecStart=/opt/tessum/bin/Tessum record\n"));
  EXPECT_TRUE(contains(entryFor(program), "\nExec=/opt/tessum/bin/Tessum record\n"));
  EXPECT_TRUE(contains(windowsEntryFor(program), "\nExec=/opt/tessum/bin/Tessum\n"));
  EXPECT_TRUE(contains(agentFor(program), "<string>/opt/tessum/bin/Tessum</string>"));
}

TEST(StartFiles, QuoteAPathThatNeedsIt) {
  EXPECT_TRUE(
      contains(unitFor("/my \"own\" 5%/$a"), "\nExecStart=\"/my \\\"own\\\" 5%%/$$a\" record\n"));
  EXPECT_TRUE(contains(entryFor("/my \"own\" 5%/$a"),
                       "\nExec=\"/my \\\\\"own\\\\\" 5%%/\\\\$a\" record\n"));
  EXPECT_TRUE(contains(agentFor("/a&<b"), "<string>/a&amp;&lt;b</string>"));
}

TEST(StartCommand, IsTheFirstWord) {
  struct Case {
    const char* text;
    const char* command;
  };
  for (const Case& row : {Case{"[Service]\nExecStart=Tessum record\n", "Tessum"},
                          Case{"ExecStart = /a/Tessum record", "/a/Tessum"},
                          Case{"ExecStart=\"/a b/100%%/Tessum\" record\n", "/a b/100%/Tessum"},
                          Case{"ExecStartPre=/bin/true\nExecStart=/b\n", "/b"},
                          Case{"#ExecStart=/a\n", ""}, Case{"ExecStart=\n", ""}, Case{"", ""}}) {
    EXPECT_EQ(startCommand(row.text, "ExecStart"), row.command) << row.text;
  }
}

TEST(TurnedOffEntry, SaysSo) {
  EXPECT_TRUE(isTurnedOffEntry("[Desktop Entry]\nHidden=true\n"));
  EXPECT_TRUE(isTurnedOffEntry("[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n"));
  EXPECT_FALSE(isTurnedOffEntry("[Desktop Entry]\nHidden=false\n"));
  EXPECT_FALSE(isTurnedOffEntry("[Desktop Entry]\nNoDisplay=true\n"));
}

}  // namespace
}  // namespace tessum
