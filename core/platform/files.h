// Whole files: read, and replaced in one step.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// Failures are thrown as std::system_error that names the file, or the folder where that is what
// refuses. Any thread.
class Files {
 public:
  virtual ~Files() = default;

  // Whether something lies at `path`, symbolic links followed. False also when that cannot be found
  // out.
  [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

  // The bytes of the file at `path`. Only regular files have any: a folder, a pipe or a device is
  // a failure.
  [[nodiscard]] virtual std::string read(const std::string& path) const = 0;

  // Creates the folder at `path` and those above it; one that exists is no error.
  virtual void createFolders(const std::string& path) const = 0;

  // Makes `bytes` the content of the file at `path`: afterwards it holds the old bytes or the new
  // ones, never anything else, even if the computer stops halfway. The old file's owner and group
  // are kept where the system allows it. So are its permissions, unless the group changes: then
  // nobody may do more than before. A new file is for the user alone (0600). A symbolic link stays
  // one: the file that it points at is replaced. Only a regular file can be replaced.
  //
  // A failure leaves nothing behind. A process that is killed may leave a hidden file; the next
  // replacement in that folder removes it, as does removeLeftBehind().
  virtual void replace(const std::string& path, std::string_view bytes) const = 0;
};

// The files of this system.
class SystemFiles final : public Files {
 public:
  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] std::string read(const std::string& path) const override;
  void createFolders(const std::string& path) const override;
  void replace(const std::string& path, std::string_view bytes) const override;
};

// Removes what replacements in the folder of the file at `path` left behind when their processes
// were killed. Throws nothing: what cannot be found or removed stays. Any thread.
void removeLeftBehind(const std::string& path);

}  // namespace tessum
