// A temporary folder for a test.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// An empty folder that is removed, with its contents, when the object is destroyed.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }

  // The path of `name` in the folder. Creates nothing.
  [[nodiscard]] std::string file(std::string_view name) const;

 private:
  std::string path_;
};

// The bytes of the file at `path`. If it cannot be read, the test fails and gets an empty string.
[[nodiscard]] std::string readFile(const std::string& path);

// Replaces the contents of the file at `path` with `bytes`.
void writeFile(const std::string& path, std::string_view bytes);

}  // namespace tessum
