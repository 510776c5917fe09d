// Adds and removes one entry in the text of a configuration file, and leaves every other byte.
//
// Each edit is verified: the text is read before and after, by a reader that is not the editor's,
// and must differ by the entry alone. What cannot be edited in this way is refused.

#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/json/value.h"

namespace tessum {

// What JSON and TOML allow between their parts.
inline constexpr std::string_view kWhiteSpace = " \t\r\n";

// Why a text cannot be edited, as a clause: "line 3: it has two members \"mcpServers\"".
class CannotEdit : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What an edit added. Taking it out again gives the text from before, byte for byte.
struct Addition {
  std::string text = {};      // the added text but for the comma before it; empty when unknown
  bool hasComma = false;      // a comma was added behind the member before
  bool hasContainer = false;  // the table of servers was added with the entry

  friend bool operator==(const Addition&, const Addition&) = default;
};

struct EditedText {
  std::string text = {};
  Addition addition = {};
  bool isReplaced = false;  // there was an entry, and its value was replaced in its place
};

struct RewrittenText {
  std::string text = {};
  bool isLossy = false;       // it lacks something that the text before had
  bool hasContainer = false;  // the container was added
};

// One syntax; the entry is the member `key` of the root's member `container`. Immutable. All calls
// throw CannotEdit unless they say otherwise. An empty text is an empty root.
class ConfigText {
 public:
  virtual ~ConfigText() = default;

  // The entry; absent when there is none.
  [[nodiscard]] virtual std::optional<json::Value> entry(std::string_view text) const = 0;

  // `text` with `entry` added or replaced. `made` is what an earlier edit added, if any, and may be
  // out of date.
  [[nodiscard]] virtual EditedText withEntry(std::string_view text, const json::Value& entry,
                                             const Addition& made) const = 0;

  // `text` without its entry, which must exist; also without a container that `made` says was
  // added and that is empty now.
  [[nodiscard]] virtual std::string withoutEntry(std::string_view text,
                                                 const Addition& made) const = 0;

  // `text` read, given the entry, and written anew. What cannot be read is lost. Throws nothing.
  [[nodiscard]] virtual RewrittenText rewritten(std::string_view text,
                                                const json::Value& entry) const = 0;

  // Whether `text` holds nothing: no member and no comment.
  [[nodiscard]] virtual bool isEmpty(std::string_view text) const = 0;

  // The lines to paste into a file that has no container.
  [[nodiscard]] virtual std::string lines(const json::Value& entry) const = 0;
};

}  // namespace tessum
