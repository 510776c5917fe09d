#include "core/workspace/x11/window_properties.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/workspace/title.h"

namespace tessum {
namespace {

using namespace std::string_literals;

constexpr X11Atoms kAtoms{.activeWindow = 1,
                          .windowManagerCheck = 2,
                          .netName = 3,
                          .process = 4,
                          .applicationId = 5,
                          .desktopFile = 6,
                          .name = 7,
                          .windowClass = 8,
                          .clientMachine = 9,
                          .utf8String = 10,
                          .compoundText = 11};
constexpr std::uint32_t kString = 12;

class WindowProperties : public testing::Test {
 protected:
  void set(std::uint32_t name, std::uint32_t type, const std::string& bytes, int bitsPerItem = 8) {
    const auto place = std::find(names_.begin(), names_.end(), name) - names_.begin();
    properties_.at(static_cast<std::size_t>(place)) = X11Property{type, bitsPerItem, bytes};
  }

  void setProcess(std::uint32_t number) {
    set(kAtoms.process, kString, {reinterpret_cast<const char*>(&number), sizeof number}, 32);
  }

  [[nodiscard]] X11Window read() const { return readWindowProperties(1, properties_, kAtoms); }

  const std::vector<std::uint32_t> names_ = windowPropertyNames(kAtoms);
  X11Properties properties_ = X11Properties(names_.size());
};

TEST_F(WindowProperties, AWindowMaySayNothing) {
  EXPECT_EQ(read().description, WindowDescription{.window = 1});
  EXPECT_EQ(read().title, std::nullopt);
}

TEST_F(WindowProperties, ReadsAllThatAWindowSays) {
  set(kAtoms.applicationId, kAtoms.utf8String, "org.some.App");
  set(kAtoms.desktopFile, kAtoms.utf8String, "some.desktop");
  set(kAtoms.windowClass, kString, "instance\0Class\0"s);
  set(kAtoms.clientMachine, kString, "machine");
  set(kAtoms.netName, kAtoms.utf8String, "title");
  setProcess(7);
  EXPECT_EQ(read().description, (WindowDescription{.window = 1,
                                                   .applicationId = "org.some.App",
                                                   .desktopFile = "some.desktop",
                                                   .instance = "instance",
                                                   .windowClass = "Class",
                                                   .process = 7,
                                                   .clientMachine = "machine"}));
  EXPECT_EQ(read().title, "title");
}

TEST_F(WindowProperties, EmptyTextsAreAbsent) {
  set(kAtoms.applicationId, kAtoms.utf8String, "");
  set(kAtoms.windowClass, kString, "\0\0"s);
  set(kAtoms.netName, kAtoms.utf8String, "");
  EXPECT_EQ(read().description, WindowDescription{.window = 1});
  EXPECT_EQ(read().title, std::nullopt);
}

TEST_F(WindowProperties, AClassNeedsItsOwnPart) {
  for (const auto& [bytes, windowClass] : {std::pair{"one"s, std::optional<std::string>()},
                                           {"one\0"s, std::nullopt},
                                           {"\0two"s, "two"},
                                           {"one\0two\0three"s, "two"}}) {
    set(kAtoms.windowClass, kString, bytes);
    EXPECT_EQ(read().description.windowClass, windowClass) << bytes;
  }
}

TEST_F(WindowProperties, ValuesOfAnotherKindAreAbsent) {
  for (const std::uint32_t name : names_) set(name, kAtoms.utf8String, "12345678", 16);
  EXPECT_EQ(read().description, WindowDescription{.window = 1});
  EXPECT_EQ(read().title, std::nullopt);
}

TEST_F(WindowProperties, AProcessHasAPositiveNumber) {
  setProcess(2'147'483'647);
  EXPECT_EQ(read().description.process, 2'147'483'647);
  for (const std::uint32_t none : {0U, 2'147'483'648U, 4'294'967'295U}) {
    setProcess(none);
    EXPECT_EQ(read().description.process, std::nullopt) << none;
  }
}

TEST_F(WindowProperties, TheModernNameComesBeforeTheOldOne) {
  set(kAtoms.name, kString, "old");
  EXPECT_EQ(read().title, "old");
  set(kAtoms.netName, kAtoms.utf8String, "modern");
  EXPECT_EQ(read().title, "modern");
  set(kAtoms.netName, kAtoms.utf8String, "");
  EXPECT_EQ(read().title, std::nullopt) << "an empty one says that there is no title";
}

TEST_F(WindowProperties, LongTextsAreCutBetweenCharacters) {
  std::string text;
  while (text.size() <= kLongestTitle) text += "\u65E5";
  text.resize(kLongestTitle + 4);  // as the connection cuts it
  set(kAtoms.netName, kAtoms.utf8String, text);
  set(kAtoms.applicationId, kAtoms.utf8String, text);
  EXPECT_EQ(read().title, text.substr(0, kLongestTitle / 3 * 3));
  EXPECT_EQ(read().description.applicationId, text.substr(0, kLongestName / 3 * 3));
}

}  // namespace
}  // namespace tessum
