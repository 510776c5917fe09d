#include "core/workspace/gnome/shell_extension.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessum {
namespace {

TEST(ShellExtensionFor, FitsTheVersionOfTheShell) {
  for (const char* version : {"43", "43.9", "44.10"}) {
    EXPECT_EQ(shellExtensionFor(version), "focused-window-44@tessum") << version;
  }
  for (const char* version : {"45", "45.alpha", "48.4", "100", "", "x", "99999999999999"}) {
    EXPECT_EQ(shellExtensionFor(version), "focused-window@tessum") << version;
  }
}

TEST(ReadShellExtension, TakesWhatIsThere) {
  const BusDictionary shell{{"ShellVersion", "43.9"}, {"UserExtensionsEnabled", false}};
  const auto report = readShellExtension(shell, {{"state", 3.0}, {"error", "x"}, {"other", true}});
  EXPECT_EQ(report.shellVersion, "43.9");
  EXPECT_FALSE(report.allowsExtensions);
  EXPECT_EQ(report.state, 3);
  EXPECT_EQ(report.error, "x");
  const auto nothing = readShellExtension({{"ShellVersion", true}}, {{"state", "1"}});
  EXPECT_EQ(nothing.shellVersion, "");
  EXPECT_TRUE(nothing.allowsExtensions);
  EXPECT_EQ(nothing.state, std::nullopt);
}

TEST(ReadShellExtension, AStateThatNoShellHasIsUnknown) {
  for (const double state : {-1.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(readShellExtension({}, {{"state", state}}).state, 0);
  }
}

struct Case {
  ShellExtensionReport report;
  const char* reason;  // empty where there is nothing to say
  const char* remedy;
};

class NoticeOfExtension : public testing::TestWithParam<Case> {};

TEST_P(NoticeOfExtension, SaysTheTruthAndWhatToDo) {
  const auto& [report, reason, remedy] = GetParam();
  const auto notice = noticeOf(report);
  ASSERT_EQ(notice.has_value(), *reason != '\0');
  if (!notice) return;
  EXPECT_EQ(notice->text,
            std::string("Recording waits for Tessum's extension of GNOME Shell: ") + reason);
  EXPECT_EQ(notice->remedy, remedy);
  EXPECT_FALSE(notice->isFinal);
}

INSTANTIATE_TEST_SUITE_P(
    States, NoticeOfExtension,
    testing::Values(
        Case{{"43.9", true, 1}, "", ""},   // it runs
        Case{{"46.1", true, 8}, "", ""},   // it is being started
        Case{{"46.1", true, 77}, "", ""},  // unknown
        Case{{"43.9"}, "it is not installed.", "Run \"Tessum setup\", and log out and in again."},
        Case{{"48.4", true, {}, "", true},
             "the shell finds it at your next login.",
             "Log out and in again, and run \"Tessum setup\"."},
        Case{{"43.9", true, 99, "", true},
             "the shell finds it at your next login.",
             "Log out and in again, and run \"Tessum setup\"."},
        Case{{"48.4", true, 2, "", true}, "it is turned off.", "Run \"Tessum setup\"."},
        Case{{"48.4", true, 6, "", true}, "it is turned off.", "Run \"Tessum setup\"."},
        Case{{"48.4", false, 2, "", true},
             "the shell is set to run no extensions.",
             "Turn them on in the application Extensions, and run \"Tessum setup\"."},
        Case{{"48.4", true, 3, "x is not defined", true},
             "the shell could not start it: x is not defined",
             "Install a newer version of Tessum, and log out and in again."},
        Case{{"60.1", true, 4, "", true},
             "it does not know GNOME 60.1.",
             "Install a newer version of Tessum."}));

}  // namespace
}  // namespace tessum
