// A certificate authority for one test run.

#pragma once

#include <memory>
#include <string>

namespace tessum {

// It makes its own certificate and those that it issues; nobody else trusts it.
class ThrowAwayAuthority {
 public:
  // What a server identifies itself with, both parts as PEM.
  struct Identity {
    std::string certificate;
    std::string key;
  };

  explicit ThrowAwayAuthority(const std::string& name = "Throw-away authority");
  ~ThrowAwayAuthority();
  ThrowAwayAuthority(const ThrowAwayAuthority&) = delete;
  ThrowAwayAuthority& operator=(const ThrowAwayAuthority&) = delete;

  // The certificate to trust, as PEM.
  [[nodiscard]] std::string certificate() const;

  // An identity for the alternative name `name`, such as "IP:127.0.0.1" or "DNS:other.example",
  // valid for `days` from yesterday.
  [[nodiscard]] Identity issue(const std::string& name, int days = 3) const;

 private:
  struct Keys;
  std::unique_ptr<Keys> keys_;
};

}  // namespace tessum
