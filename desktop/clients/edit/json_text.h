// A configuration file in JSON, which may have comments and trailing commas.

#pragma once

#include <string>

#include "desktop/clients/edit/config_text.h"
#include "desktop/clients/edit/json_layout.h"

namespace tessum {

// See ConfigText. Immutable.
class JsonText final : public ConfigText {
 public:
  JsonText(std::string_view container, std::string_view key) : container_(container), key_(key) {}

  [[nodiscard]] std::optional<json::Value> entry(std::string_view text) const override;
  [[nodiscard]] EditedText withEntry(std::string_view text, const json::Value& entry,
                                     const Addition& made) const override;
  [[nodiscard]] std::string withoutEntry(std::string_view text,
                                         const Addition& made) const override;
  [[nodiscard]] RewrittenText rewritten(std::string_view text,
                                        const json::Value& entry) const override;
  [[nodiscard]] bool isEmpty(std::string_view text) const override;
  [[nodiscard]] std::string lines(const json::Value& entry) const override;

 private:
  struct Parsed;

  // Where what was added stands; absent when it does not any more.
  [[nodiscard]] std::optional<TextRange> placeOf(const Parsed& parsed, const Addition& made) const;

  [[nodiscard]] EditedText withValue(const Parsed& before, const json::Value& entry,
                                     const Addition& made) const;
  [[nodiscard]] std::optional<std::string> withoutAddition(const Parsed& before,
                                                           const Addition& made) const;
  [[nodiscard]] std::string withoutMember(const Parsed& before, bool hasContainer) const;

  std::string container_;
  std::string key_;
};

}  // namespace tessum
