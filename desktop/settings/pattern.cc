#include "desktop/settings/pattern.h"

#include <re2/re2.h>

#include <algorithm>
#include <stdexcept>

namespace tessum {
namespace {

// At worst a search takes a step, about two nanoseconds, for each byte and each instruction of the
// pattern's program. These are some 20 milliseconds.
constexpr std::size_t kMostSteps = 10'000'000;
constexpr std::size_t kAlwaysSearched = 1024;  // bytes

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

std::size_t Pattern::mostBytes() const {
  const auto instructions = static_cast<std::size_t>(std::max(compiled_->ProgramSize(), 1));
  return std::max(kAlwaysSearched, kMostSteps / instructions);
}

bool Pattern::isIn(std::string_view text) const {
  if (text.size() > mostBytes()) return true;
  return compiled_->Match(text, 0, text.size(), re2::RE2::UNANCHORED, nullptr, 0);
}

}  // namespace tessum
