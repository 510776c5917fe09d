// A configuration file in TOML.

#pragma once

#include <string>

#include "desktop/clients/edit/config_text.h"

namespace tessum {

// See ConfigText; the entry is the table [container.key], and both names need no quotes. Immutable.
class TomlText final : public ConfigText {
 public:
  TomlText(std::string_view container, std::string_view key) : container_(container), key_(key) {}

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
  // The entry's table, with this line break behind each line.
  [[nodiscard]] std::string table(const json::Value& entry, const std::string& lineBreak) const;

  [[nodiscard]] EditedText replaced(std::string_view text, const json::Value& entry,
                                    const Addition& made) const;
  [[nodiscard]] std::string withoutStatements(std::string_view text) const;

  std::string container_;
  std::string key_;
};

}  // namespace tessum
