// Reads the parts that TessumFetch writes.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/fetch/fetch_parts.h"

namespace tessum {

// The bytes are not valid parts: the program is faulty.
class BadFetchPart : public std::runtime_error {
 public:
  BadFetchPart() : std::runtime_error("TessumFetch sent something unexpected") {}
};

// Reads bytes that arrive in pieces of any length. Not thread-safe.
class FetchPartReader {
 public:
  struct Part {
    FetchPart kind;
    std::uint32_t size;        // bytes of the content
    std::string_view content;  // valid until the next call of add(); empty where it goes elsewhere
  };

  // Where the content of `body` parts goes.
  enum class Body { amongTheParts, elsewhere };

  explicit FetchPartReader(Body body) : body_(body) {}

  void add(std::string_view bytes);

  // The next part; absent until the rest of it has been added. Throws BadFetchPart.
  [[nodiscard]] std::optional<Part> next();

 private:
  const Body body_;
  std::string bytes_;
  std::size_t at_ = 0;  // where the next part begins
};

}  // namespace tessum
