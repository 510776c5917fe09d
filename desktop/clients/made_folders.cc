#include "desktop/clients/made_folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tessum {

std::vector<std::string> missingFolders(const std::string& path) {
  std::vector<std::string> folders;
  std::error_code error;
  for (std::filesystem::path folder = path; folder.has_relative_path();
       folder = folder.parent_path()) {
    if (std::filesystem::symlink_status(folder, error).type() !=
        std::filesystem::file_type::not_found) {
      break;
    }
    folders.push_back(folder.string());
  }
  std::reverse(folders.begin(), folders.end());
  return folders;
}

void removeEmptyFolders(const std::vector<std::string>& folders) {
  std::error_code error;
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
    if (std::filesystem::is_directory(std::filesystem::symlink_status(*folder, error))) {
      std::filesystem::remove(*folder, error);
    }
  }
}

}  // namespace tessum
