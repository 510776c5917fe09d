// Every byte that the recorder writes, to files that it deletes, too: nothing hidden is among them.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/folder_contents.h"

namespace tessum {
namespace {

constexpr char kRules[] = R"(
[[hide]]
app = "^Hidden$"
[[hide]]
title = "(?i)secret"
keep = "app"
[[hide]]
title = "classified"
)";

// The calls that write, on all threads and in started programs, with whole texts. The process that
// is started is the recorder, and the tracer is its child.
const std::vector<std::string> kTrace = {
    "--daemonize", "--follow-forks", "--string-limit=10000000",
    "--trace=openat,write,writev,pwrite64,pwritev,sendto,sendmsg"};

TEST(HiddenWrites, HoldNothingThatTheRulesHide) {
  Desktop desktop;
  desktop.startWindowManager();
  const std::string config = desktop.home().file("config/Tessum");
  std::filesystem::create_directories(config);
  writeFile(config + "/settings.toml", kRules);
  const std::string trace = desktop.home().file("trace");
  std::vector<std::string> arguments = kTrace;
  arguments.insert(arguments.end(),
                   {"--output=" + trace, TESSUM_PROGRAM, "record", "--no-update-check"});
  const auto recorder = desktop.start("strace", arguments,
                                      {"XDG_CONFIG_HOME=" + desktop.home().file("config"),
                                       "ASAN_OPTIONS=detect_leaks=0"});  // which traces, too
  const std::string history = desktop.dataFolder() + "/activities.db";
  const auto shows = [&](const std::string& text) {
    return eventually([&] { return readFile(trace).find(text) != std::string::npos; });
  };
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(history); }));

  const xcb_window_t window = desktop.addWindow("Shown");
  const auto title = [&](const std::string& text) {
    desktop.setProperty(window, "_NET_WM_NAME", "UTF8_STRING", text);
  };
  for (int i = 0; i < 20; ++i) {
    const std::string number = std::to_string(i) + ".";
    title("public title " + number);
    ASSERT_TRUE(shows("public title " + number));
    title("my Secret " + number);
    title("public again " + number);
    title("classified " + number);
    const xcb_window_t hidden = desktop.addWindow("Hidden");
    desktop.setProperty(hidden, "_NET_WM_NAME", "UTF8_STRING", "hidden title " + number);
    desktop.removeWindow(hidden);
    desktop.activate(window);
  }
  title("the end");
  ASSERT_TRUE(shows("the end"));
  recorder->kill(SIGTERM);
  EXPECT_EQ(recorder->wait(), kSuccess);
  ASSERT_TRUE(shows("+++ exited with 0"));

  const std::string written = readFile(trace);
  EXPECT_NE(written.find("activities.db-journal"), std::string::npos) << "not all calls are traced";
  std::string left;
  for (const std::string& name : namesIn(desktop.dataFolder())) {
    left += readFile(desktop.dataFolder() + "/" + name);
  }
  for (const char* secret : {"Secret", "classified", "Hidden", "hidden title"}) {
    EXPECT_EQ(written.find(secret), std::string::npos) << secret;
    EXPECT_EQ(left.find(secret), std::string::npos) << secret;
  }
  EXPECT_NE(left.find("the end"), std::string::npos);
}

}  // namespace
}  // namespace tessum
