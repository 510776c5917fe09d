// Registers Tessum in a file, in the test's own process.

#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "desktop/clients/registration.h"
#include "desktop/host/host.h"
#include "tests/support/fakes/fake_locations.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

using Outcome = RegistrationChange::Outcome;

class RegistrationTest : public testing::Test {
 protected:
  // A home folder with a program, and a server beside it.
  RegistrationTest() {
    locations_.home = folder_.path();
    locations_.executable = folder_.file("bin/Tessum");
    std::filesystem::create_directory(folder_.file("bin"));
    writeFile(folder_.file("bin/TessumMCP"), "");
    chmod(folder_.file("bin/TessumMCP").c_str(), 0700);
  }

  const TemporaryFolder folder_;
  FakeLocations locations_;
  const SystemClock clock_;
  const SystemCalendar calendar_;
  const SystemFiles files_;
  const SystemUrlOpener opener_;
  const Host host_{clock_, calendar_, locations_, files_, opener_};
  const std::string file_ = folder_.file("config");
  const std::string records_ = folder_.file("Tessum/registrations.json");
};

}  // namespace tessum
