#include "desktop/settings/pattern.h"

#include <re2/re2.h>

#include <algorithm>
#include <mutex>
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

// Compiling these takes a part of a millisecond, so it can be done again. A longer program may take
// so many that it would delay the first search.
constexpr int kShortProgram = 1000;  // instructions

}  // namespace

// Any thread.
class Pattern::Compiled {
 public:
  explicit Compiled(const std::string& text)
      : text_(text), expression_(std::make_unique<const re2::RE2>(text, options())) {
    if (!expression_->ok()) throw std::invalid_argument(expression_->error());
    instructions_ = expression_->ProgramSize();
    if (instructions_ <= kShortProgram) expression_.reset();
  }

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] int instructions() const { return instructions_; }

  [[nodiscard]] const re2::RE2& expression() {
    std::call_once(isNeeded_, [this] {
      if (!expression_) expression_ = std::make_unique<const re2::RE2>(text_, options());
    });
    return *expression_;
  }

 private:
  std::string text_;
  int instructions_ = 0;
  std::once_flag isNeeded_;
  std::unique_ptr<const re2::RE2> expression_;
};

Pattern::Pattern(const std::string& text) : compiled_(std::make_shared<Compiled>(text)) {}

const std::string& Pattern::text() const {
  return compiled_->text();
}

std::size_t Pattern::mostBytes() const {
  const auto instructions = static_cast<std::size_t>(std::max(compiled_->instructions(), 1));
  return std::max(kAlwaysSearched, kMostSteps / instructions);
}

bool Pattern::isIn(std::string_view text) const {
  if (text.size() > mostBytes()) return true;
  // Not every build of RE2 takes std::string_view.
  return compiled_->expression().Match({text.data(), text.size()}, 0, text.size(),
                                       re2::RE2::UNANCHORED, nullptr, 0);
}

}  // namespace tessum
