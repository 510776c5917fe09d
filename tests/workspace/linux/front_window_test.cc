#include "core/workspace/linux/front_window.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

const std::string kHere = "this-machine";

class Identify : public testing::Test {
 protected:
  Identify() {
    add("org.some.Editor", "Name=Some Editor");
    add("org.some.Player", "Name=Some Player\nStartupWMClass=player");
    add("mail_mail", "Name=Sandboxed Mail\nX-SnapInstanceName=mail");
    add("office_sheet", "Name=Sheet\nX-SnapInstanceName=office\nStartupWMClass=office-sheet");
    add("office_text", "Name=Text\nX-SnapInstanceName=office\nStartupWMClass=office-text");
    add("renamed", "Name=Sandboxed Map\nX-Flatpak=org.some.Map");
    entries_.refresh();
  }

  [[nodiscard]] FrontWindow identified(const WindowDescription& description) const {
    return identify(description, entries_, kHere, [](std::int32_t process) {
      return process == 7 ? std::optional<std::string>("seven") : std::nullopt;
    });
  }

  [[nodiscard]] RunningApplication application(const WindowDescription& description) const {
    return identified(description).application;
  }

  [[nodiscard]] bool areOne(const WindowDescription& a, const WindowDescription& b) const {
    return identified(a).key == identified(b).key;
  }

 private:
  void add(const std::string& id, const std::string& keys) {
    std::filesystem::create_directories(folder_.file("applications"));
    writeFile(folder_.file("applications/" + id + ".desktop"),
              "[Desktop Entry]\nType=Application\n" + keys);
  }

  const TemporaryFolder folder_;
  DesktopEntries entries_{{folder_.file("applications")}, {}};
};

TEST_F(Identify, AWindowThatSaysNothingIsOfAnUnknownApplication) {
  EXPECT_EQ(application({}), RunningApplication{});
}

TEST_F(Identify, TakesTheDesktopEntryOfTheApplicationId) {
  EXPECT_EQ(application({.applicationId = "org.some.Editor", .windowClass = "player"}),
            (RunningApplication{"Some Editor", "org.some.Editor", std::nullopt}));
}

TEST_F(Identify, TakesTheDesktopEntryOfTheNamedFile) {
  for (const char* file : {"org.some.Player", "/usr/share/applications/org.some.Player.desktop"}) {
    EXPECT_EQ(application({.applicationId = "org.unknown", .desktopFile = file}),
              (RunningApplication{"Some Player", "org.some.Player", std::nullopt}));
  }
}

TEST_F(Identify, TakesTheDesktopEntryThatClaimsTheClass) {
  EXPECT_EQ(application({.instance = "x", .windowClass = "player"}),
            (RunningApplication{"Some Player", "org.some.Player", std::nullopt}));
  EXPECT_EQ(application({.instance = "org.some.editor"}),
            (RunningApplication{"Some Editor", "org.some.Editor", std::nullopt}));
}

TEST_F(Identify, TakesTheDesktopEntryOfASandbox) {
  EXPECT_EQ(application({.applicationId = "mail"}).localizedName, "Sandboxed Mail");
  EXPECT_EQ(application({.windowClass = "mail"}).bundleIdentifier, "mail_mail");
  EXPECT_EQ(application({.applicationId = "org.some.Map", .windowClass = "map"}).bundleIdentifier,
            "renamed");
}

TEST_F(Identify, TheClassTellsApartTheApplicationsOfASandbox) {
  EXPECT_EQ(application({.applicationId = "office", .windowClass = "office-text"}).localizedName,
            "Text");
  EXPECT_EQ(application({.applicationId = "office", .windowClass = "other"}).localizedName,
            "Sheet");
}

TEST_F(Identify, WithoutAnEntryTheIdAndTheClassStandForThemselves) {
  EXPECT_EQ(application({.applicationId = "org.unknown", .windowClass = "Tool"}),
            (RunningApplication{"Tool", "org.unknown", std::nullopt}));
  EXPECT_EQ(application({.windowClass = "Tool"}),
            (RunningApplication{"Tool", std::nullopt, std::nullopt}));
}

TEST_F(Identify, WithoutAClassTheProcessGivesTheName) {
  EXPECT_EQ(application({.process = 7, .clientMachine = kHere}),
            (RunningApplication{"seven", std::nullopt, 7}));
  EXPECT_EQ(application({.process = 8, .clientMachine = kHere}),
            (RunningApplication{std::nullopt, std::nullopt, 8}));
}

TEST_F(Identify, AProcessOfAnotherOrAnUnknownMachineDoesNotCount) {
  EXPECT_EQ(application({.process = 7, .clientMachine = "elsewhere"}), RunningApplication{});
  EXPECT_EQ(application({.process = 7}), RunningApplication{});
}

TEST_F(Identify, WindowsOfOneClassAndProcessAreOfOneApplication) {
  const WindowDescription window{
      .window = 1, .instance = "main", .windowClass = "Tool", .process = 7, .clientMachine = kHere};
  auto other = window;
  other.window = 2;
  other.instance = "dialog";
  EXPECT_TRUE(areOne(window, other));
  other.process = 8;
  EXPECT_FALSE(areOne(window, other));
  other = window;
  other.windowClass = "Other";
  EXPECT_FALSE(areOne(window, other));
}

TEST_F(Identify, WindowsThatSayNothingAreEachAnApplication) {
  EXPECT_FALSE(areOne({.window = 1}, {.window = 2}));
  EXPECT_TRUE(areOne({.window = 1}, {.window = 1}));
}

}  // namespace
}  // namespace tessum
