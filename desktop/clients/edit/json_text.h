// A configuration file in JSON, which may have comments and trailing commas.

#pragma once

#include <string>

#include "desktop/clients/edit/config_text.h"

namespace tessum {

// See ConfigText. Immutable.
class JsonText final : public ConfigText {
 public:
  JsonText(std::string_view container, std::string_view key) : container_(container), key_(key) {}

  [[nodiscard]] std::optional<json::Value> entry(std::string_view text) const override;
  [[nodiscard]] EditedText withEntry(std::string_view text,
                                     const json::Value& entry) const override;
  [[nodiscard]] std::string withoutEntry(std::string_view text,
                                         const std::optional<Addition>& made) const override;
  [[nodiscard]] bool isEmpty(std::string_view text) const override;
  [[nodiscard]] std::string lines(const json::Value& entry) const override;

 private:
  struct Parsed;

  // Absent when what was added does not stand there any more.
  [[nodiscard]] std::optional<std::string> withoutAddition(const Parsed& before,
                                                           const Addition& made) const;
  [[nodiscard]] std::string withoutMember(const Parsed& before, bool hasContainer) const;

  std::string container_;
  std::string key_;
};

}  // namespace tessum
