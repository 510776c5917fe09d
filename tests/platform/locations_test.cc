#include "core/platform/locations.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/environment.h"

namespace tessum {
namespace {

TEST(SystemLocations, TakesTheHomeFolderFromTheEnvironmentWithoutTrailingSlash) {
  const ScopedVariable home("HOME", "/home/ann//");
  EXPECT_EQ(SystemLocations().homeFolder(), "/home/ann");
}

TEST(SystemLocations, FallsBackToThePasswdEntry) {
  for (const char* useless : {static_cast<const char*>(nullptr), "", "relative/home"}) {
    const ScopedVariable home("HOME", useless);
    EXPECT_EQ(SystemLocations().homeFolder().front(), '/');
  }
}

TEST(SystemLocations, FindsTheRunningProgram) {
  const auto path = SystemLocations().executablePath();
  ASSERT_TRUE(path.has_value());
  EXPECT_EQ(std::filesystem::path(*path).filename(), "test_platform");
  EXPECT_TRUE(std::filesystem::exists(*path));
}

#ifdef __linux__

TEST(SystemLocations, PutsDataWhereTheDesktopSaysWhenThatIsAbsolute) {
  const ScopedVariable home("HOME", "/home/ann");
  ScopedVariable data("XDG_DATA_HOME", "/data/ann/");
  EXPECT_EQ(SystemLocations().dataFolder(), "/data/ann/Tessum");
  for (const char* useless : {static_cast<const char*>(nullptr), "", "relative"}) {
    data.set(useless);
    EXPECT_EQ(SystemLocations().dataFolder(), "/home/ann/.local/share/Tessum");
  }
}

TEST(SystemLocations, KeepsSettingsWhereTheDesktopSaysWhenThatIsAbsolute) {
  const ScopedVariable home("HOME", "/home/ann");
  ScopedVariable config("XDG_CONFIG_HOME", "/config/ann/");
  EXPECT_EQ(SystemLocations().configFolder(), "/config/ann");
  for (const char* useless : {static_cast<const char*>(nullptr), "", "relative"}) {
    config.set(useless);
    EXPECT_EQ(SystemLocations().configFolder(), "/home/ann/.config");
  }
}

#endif

}  // namespace
}  // namespace tessum
