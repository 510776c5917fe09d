#include "core/workspace/linux/desktop_entries.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

using Texts = std::vector<std::string>;

TEST(LocaleSuffixes, GoFromTheExactToTheGeneral) {
  EXPECT_EQ(localeSuffixes("de_DE.UTF-8@euro"), (Texts{"de_DE@euro", "de_DE", "de@euro", "de"}));
  EXPECT_EQ(localeSuffixes("de_DE.UTF-8"), (Texts{"de_DE", "de"}));
  EXPECT_EQ(localeSuffixes("de"), Texts{"de"});
  for (const char* none : {"", "C", "C.UTF-8", "POSIX"}) EXPECT_EQ(localeSuffixes(none), Texts{});
}

TEST(ParseDesktopEntry, TakesNameAndClassOfTheEntryGroup) {
  const std::string text =
      "# a comment\r\n[Other]\nName=Wrong\n\n[Desktop Entry]\nType = Application\r\n"
      "Name = Some Editor \nName=Second\nStartupWMClass=Editor\n#Hidden=true\nNonsense\n"
      "[Desktop Action new]\nName=New\nHidden=true\n";
  EXPECT_EQ(parseDesktopEntry(text, {}), (DesktopEntry{"Some Editor", "Editor"}));
}

TEST(ParseDesktopEntry, TakesTheIdOfTheSandbox) {
  const std::string text = "[Desktop Entry]\nType=Application\nName=x\n";
  EXPECT_EQ(parseDesktopEntry(text, {})->sandboxId, std::nullopt);
  EXPECT_EQ(parseDesktopEntry(text + "X-Flatpak=org.some.Map\n", {})->sandboxId, "org.some.Map");
  EXPECT_EQ(parseDesktopEntry(text + "X-SnapInstanceName=mail\n", {})->sandboxId, "mail");
}

TEST(ParseDesktopEntry, PrefersTheUsersLanguage) {
  const std::string text =
      "[Desktop Entry]\nType=Application\nName=Files\nName[de]=Dateien\nName[pt_BR]=Arquivos\n";
  EXPECT_EQ(parseDesktopEntry(text, {"de_DE", "de"})->name, "Dateien");
  EXPECT_EQ(parseDesktopEntry(text, {"pt_BR", "pt"})->name, "Arquivos");
  EXPECT_EQ(parseDesktopEntry(text, {"fr"})->name, "Files");
}

TEST(ParseDesktopEntry, ReadsEscapedCharactersAndRepairsUtf8) {
  const auto entry =
      parseDesktopEntry("[Desktop Entry]\nType=Application\nName=a\\sb\\\\n\\t\\x\\\xFF", {});
  EXPECT_EQ(entry->name, "a b\\n\t\\x\\\uFFFD");
}

TEST(ParseDesktopEntry, RefusesWhatIsNoApplication) {
  for (const char* text :
       {"", "\n", "Name=x\nType=Application", "[Desktop Entry]\nType=Link\nName=x",
        "[Desktop Entry]\nName=x", "[Desktop Entry]\nType=Application",
        "[Desktop Entry]\nType=Application\nName=", "[Desktop Entry",
        "[Desktop Entry]\nType=Application\nName=x\nHidden=true"}) {
    EXPECT_FALSE(parseDesktopEntry(text, {}).has_value()) << text;
  }
}

TEST(DataFolders, ComeInTheOrderOfTheirWeight) {
  EXPECT_EQ(dataFolders("/home/me/.local/share", "/usr/local/share/:/usr/share"),
            (Texts{"/home/me/.local/share", "/usr/local/share", "/usr/share"}));
  EXPECT_EQ(dataFolders("relative", "::/usr/share:also/relative"), Texts{"/usr/share"});
}

class DesktopEntriesTest : public testing::Test {
 protected:
  void add(const std::string& path, const std::string& keys) {
    const std::filesystem::path file = folder_.file(path);
    std::filesystem::create_directories(file.parent_path());
    writeFile(file.string(), "[Desktop Entry]\nType=Application\n" + keys);
  }

  DesktopEntries read() {
    DesktopEntries entries({folder_.file("first"), folder_.file("second")}, {});
    entries.refresh();
    return entries;
  }

  static std::string nameOf(const std::optional<DesktopEntries::Match>& match) {
    return match ? match->id + "=" + match->entry.name : "none";
  }

  const TemporaryFolder folder_;
};

TEST_F(DesktopEntriesTest, AreFoundByTheirIds) {
  add("first/org.some.Editor.desktop", "Name=Editor");
  add("second/kde/player.desktop", "Name=Player");
  add("second/notes.txt", "Name=Notes");
  const auto entries = read();
  EXPECT_EQ(nameOf(entries.withId("org.some.Editor")), "org.some.Editor=Editor");
  EXPECT_EQ(nameOf(entries.withId("org.some.Editor.desktop")), "org.some.Editor=Editor");
  EXPECT_EQ(nameOf(entries.withId("/usr/share/applications/org.some.Editor.desktop")),
            "org.some.Editor=Editor");
  EXPECT_EQ(nameOf(entries.withId("kde-player")), "kde-player=Player");
  for (const char* id : {"", "org.some", "notes", "org.some.editor"}) {
    EXPECT_EQ(nameOf(entries.withId(id)), "none") << id;
  }
}

TEST_F(DesktopEntriesTest, AreFoundByTheClassOfAWindow) {
  add("first/a.desktop", "Name=Chat\nStartupWMClass=chat-app");
  add("first/xterm.desktop", "Name=Terminal");
  add("first/browser.desktop", "Name=Browser\nStartupWMClass=Browser");
  const auto entries = read();
  EXPECT_EQ(nameOf(entries.forWindowClass("x", "Browser")), "browser=Browser");
  EXPECT_EQ(nameOf(entries.forWindowClass("chat-app", "Browser")), "a=Chat")
      << "the instance tells apart what runs inside a browser";
  EXPECT_EQ(nameOf(entries.forWindowClass("other", "XTerm")), "xterm=Terminal");
  EXPECT_EQ(nameOf(entries.forWindowClass("XTERM", "other")), "xterm=Terminal");
  EXPECT_EQ(nameOf(entries.forWindowClass("", "")), "none");
  EXPECT_EQ(nameOf(entries.forWindowClass("unknown", "Unknown")), "none");
}

TEST_F(DesktopEntriesTest, OfTheFirstFolderHideThoseOfTheSecond) {
  add("first/a.desktop", "Name=Mine");
  add("second/a.desktop", "Name=Theirs");
  add("first/b.desktop", "Name=Deleted\nHidden=true");
  add("second/b.desktop", "Name=Theirs");
  const auto entries = read();
  EXPECT_EQ(nameOf(entries.withId("a")), "a=Mine");
  EXPECT_EQ(nameOf(entries.withId("b")), "none");
}

TEST_F(DesktopEntriesTest, AreReadAgainWhenFilesComeAndGo) {
  auto entries = read();  // not even the folders exist
  EXPECT_EQ(nameOf(entries.withId("a")), "none");
  add("second/sub/a.desktop", "Name=New");
  entries.refresh();
  EXPECT_EQ(nameOf(entries.withId("sub-a")), "sub-a=New");
  std::filesystem::remove(folder_.file("second/sub/a.desktop"));
  // Folder modification times are coarse, so two changes of a test may share one.
  std::filesystem::last_write_time(folder_.file("second/sub"),
                                   std::filesystem::file_time_type::min() + std::chrono::hours(1));
  entries.refresh();
  EXPECT_EQ(nameOf(entries.withId("sub-a")), "none");
}

}  // namespace
}  // namespace tessum
