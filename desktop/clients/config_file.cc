#include "desktop/clients/config_file.h"

namespace tessum {

std::string keepCopy(const Files& files, const std::string& path, const std::string& bytes) {
  // With this extension, applications that read every JSON file of a folder ignore the copy.
  std::string copy = path + ".before-tessum";
  for (int number = 2; files.exists(copy); ++number) {
    copy = path + ".before-tessum-" + std::to_string(number);
  }
  files.replace(copy, bytes);
  return copy;
}

}  // namespace tessum
