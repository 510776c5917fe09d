// A folder of a test's own.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// An empty folder that is removed with all it holds when the object goes.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }

  // The path of `name` inside the folder; nothing is created.
  [[nodiscard]] std::string file(std::string_view name) const;

 private:
  std::string path_;
};

// The bytes of the file at `path`; a test that cannot read it fails and gets an empty text.
[[nodiscard]] std::string readFile(const std::string& path);

// Makes `bytes` the content of the file at `path`.
void writeFile(const std::string& path, std::string_view bytes);

}  // namespace tessum
