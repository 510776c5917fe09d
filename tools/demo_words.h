// The applications, titles and notes of made-up histories. All of them are invented.

#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tessum {

struct DemoApplication {
  std::string_view name;
  const char* bundleID;  // null for a program that has none
  std::size_t share;     // how often it comes to the front, relative to the others
  // Titles; "#" stands for a number. None: the application shows no titles.
  std::vector<std::string_view> titles;
};

[[nodiscard]] const std::vector<DemoApplication>& demoApplications();

[[nodiscard]] const std::vector<std::string_view>& demoNotes();

}  // namespace tessum
