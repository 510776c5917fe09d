#include "desktop/settings/pattern.h"

#include <re2/re2.h>

#include <stdexcept>

namespace tessum {
namespace {

re2::RE2::Options options() {
  re2::RE2::Options options(re2::RE2::Quiet);  // else it writes patterns to standard error
  options.set_never_capture(true);             // faster
  return options;
}

}  // namespace

Pattern::Pattern(const std::string& text)
    : compiled_(std::make_shared<const re2::RE2>(text, options())) {
  if (!compiled_->ok()) throw std::invalid_argument(compiled_->error());
}

const std::string& Pattern::text() const {
  return compiled_->pattern();
}

bool Pattern::isIn(std::string_view text) const {
  if (text.size() > kMostBytes) return true;
  return compiled_->Match(text, 0, text.size(), re2::RE2::UNANCHORED, nullptr, 0);
}

}  // namespace tessum
