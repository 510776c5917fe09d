// Environment variables for the duration of a test.

#pragma once

#include <stdlib.h>
#include <time.h>

#include <optional>
#include <string>
#include <utility>

namespace tessum {

// Sets a variable, or with nullptr removes it, until the object is destroyed. Main thread only.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const char* value) : name_(std::move(name)) {
    if (const char* old = getenv(name_.c_str())) old_ = old;
    set(value);
  }
  ~ScopedVariable() { set(old_ ? old_->c_str() : nullptr); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

  void set(const char* value) {
    value != nullptr ? setenv(name_.c_str(), value, 1) : unsetenv(name_.c_str());
    tzset();
  }

 private:
  std::string name_;
  std::optional<std::string> old_;
};

}  // namespace tessum
