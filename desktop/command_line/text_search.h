// How a person looks for a text.

#pragma once

#include <string>
#include <vector>

#include "core/store/history.h"

namespace tessum {

// Whether texts hold `part`, which is UTF-8, in capital or small letters: two letters are alike
// when Unicode's simple case folding makes them the same, and a sharp s is like ss. No character of
// `part` has a meaning of its own. Throws std::invalid_argument when it is too long to look for.
[[nodiscard]] TextTest holding(const std::string& part);

// Words and phrases that are looked for together, in any order. Not thread-safe.
class Words {
 public:
  // Each word is UTF-8; one in double quotes stands for what is between them. Throws as holding().
  explicit Words(const std::vector<std::string>& words);

  // Whether each word is in the application's name or in the title.
  [[nodiscard]] bool areIn(const Activity& session) const;

 private:
  std::vector<TextTest> tests_;
};

}  // namespace tessum
