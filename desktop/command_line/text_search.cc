#include "desktop/command_line/text_search.h"

#include <re2/re2.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace tessum {
namespace {

// A pattern for `part` itself. RE2 knows letters that are alike one by one; this one is written as
// two in capital letters.
std::string patternOf(const std::string& part) {
  std::string pattern = re2::RE2::QuoteMeta(part);
  re2::RE2::GlobalReplace(&pattern, "(?i)ss|\u00df", "(?:ss|\u00df)");
  return pattern;
}

}  // namespace

TextTest holding(const std::string& part) {
  re2::RE2::Options options(re2::RE2::Quiet);
  options.set_case_sensitive(false);
  options.set_never_capture(true);
  const auto pattern = std::make_shared<const re2::RE2>(patternOf(part), options);
  if (!pattern->ok()) throw std::invalid_argument("the text is too long to look for");
  return [pattern](std::string_view text) {
    // Not every build of RE2 takes std::string_view.
    return pattern->Match({text.data(), text.size()}, 0, text.size(), re2::RE2::UNANCHORED, nullptr,
                          0);
  };
}

Words::Words(const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    const bool isQuoted = word.size() > 2 && word.front() == '"' && word.back() == '"';
    tests_.push_back(holding(isQuoted ? word.substr(1, word.size() - 2) : word));
  }
}

bool Words::areIn(const Activity& session) const {
  return std::all_of(tests_.begin(), tests_.end(), [&](const TextTest& isMeant) {
    return isMeant(session.appName) || (session.title && isMeant(*session.title));
  });
}

}  // namespace tessum
