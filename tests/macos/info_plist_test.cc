// The Info.plist that the build puts into Tessum.app.

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// Reads a property list with strings and <true/> only. Throws std::runtime_error for anything else.
class PropertyList {
 public:
  explicit PropertyList(std::string_view text) : rest_(text) {
    skip(R"(<?xml version="1.0" encoding="UTF-8"?>)");
    skip(R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" )"
         R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)");
    skip(R"(<plist version="1.0">)");
    skip("<dict>");
    while (trySkip("<key>")) {
      const std::string key = textUpTo("</key>");
      if (!values_.emplace(key, value()).second) fail("a second " + key);
    }
    skip("</dict>");
    skip("</plist>");
    if (!rest_.empty()) fail("text after the end");
  }

  // The text of `key`, or "true"; empty where there is none.
  [[nodiscard]] std::string at(const std::string& key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? "" : found->second;
  }

  [[nodiscard]] const std::map<std::string, std::string>& values() const { return values_; }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error(what + " at: " + std::string(rest_.substr(0, 40)));
  }

  bool trySkip(std::string_view part) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \n"), rest_.size()));
    if (!rest_.starts_with(part)) return false;
    rest_.remove_prefix(part.size());
    if (!part.ends_with("<key>") && !part.ends_with("<string>")) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(" \n"), rest_.size()));
    }
    return true;
  }

  void skip(std::string_view part) {
    if (!trySkip(part)) fail("expected " + std::string(part));
  }

  std::string textUpTo(std::string_view end) {
    const auto size = rest_.find('<');
    const std::string text(rest_.substr(0, size));
    if (text.find_first_of("&@") != text.npos) fail("an escaped or unreplaced character");
    rest_.remove_prefix(std::min(size, rest_.size()));
    skip(end);
    return text;
  }

  std::string value() {
    if (trySkip("<true/>")) return "true";
    skip("<string>");
    return textUpTo("</string>");
  }

  std::string_view rest_;
  std::map<std::string, std::string> values_;
};

class InfoPlist : public testing::Test {
 protected:
  const PropertyList list_{readFile(TESSUM_INFO_PLIST)};
};

TEST_F(InfoPlist, SaysWhichProgramAndVersionTheBundleHolds) {
  EXPECT_EQ(list_.at("CFBundleExecutable"), "Tessum");
  EXPECT_EQ(list_.at("CFBundlePackageType"), "APPL");
  EXPECT_EQ(list_.at("CFBundleIdentifier"), "org.tessum.Tessum");
  EXPECT_EQ(list_.at("CFBundleShortVersionString"), TESSUM_PROJECT_VERSION);
  EXPECT_EQ(list_.at("CFBundleVersion"), TESSUM_PROJECT_VERSION);
  EXPECT_EQ(list_.at("LSMinimumSystemVersion"), "13.0");
}

TEST_F(InfoPlist, MakesTheProgramAnAgentWithoutAPlaceInTheDock) {
  EXPECT_EQ(list_.at("LSUIElement"), "true");
}

TEST_F(InfoPlist, HasATextForEachFolderThatACommandMayName) {
  for (const auto* folder : {"DesktopFolder", "DocumentsFolder", "DownloadsFolder",
                             "NetworkVolumes", "RemovableVolumes"}) {
    EXPECT_NE(list_.at(std::string("NS") + folder + "UsageDescription"), "") << folder;
  }
}

TEST_F(InfoPlist, LeavesNoValueEmpty) {
  for (const auto& [key, value] : list_.values()) EXPECT_NE(value, "") << key;
}

}  // namespace
}  // namespace tessum
