// Compound Text is ISO 2022 with a fixed initial state: bytes below 0x80 are ASCII and those above
// are ISO 8859-1, until an escape sequence puts another character set into the lower or the upper
// half. Two-byte character sets may be in either half; their bytes differ in the top bit only.
// Other escape sequences switch to UTF-8 and back, or start a segment of known length in a named
// encoding.

#include "core/workspace/x11/compound_text.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <type_traits>

#include "core/base/text.h"

namespace tessum {
namespace {

constexpr char kEscape = '\x1B';
constexpr char kDirection = '\x9B';  // starts a sequence that ends with a bracket
constexpr char kEndOfName = '\x02';
constexpr std::string_view kToUtf8 = "\x1B%G";
constexpr std::string_view kFromUtf8 = "\x1B%@";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// How to decode the bytes of one half: iconv's name of an encoding that has the set in its upper
// half, null for an unsupported set.
struct CharacterSet {
  const char* encoding;
  std::size_t bytesPerCharacter;
};

constexpr CharacterSet kAscii{"US-ASCII", 1};
constexpr CharacterSet kLatin1{"ISO-8859-1", 1};
constexpr CharacterSet kUnknown{nullptr, 1};

// The last byte of the escape sequence that selects a set names it.
CharacterSet setOf96(char name) {
  switch (name) {
    case 'A':
      return kLatin1;
    case 'B':
      return {"ISO-8859-2", 1};
    case 'C':
      return {"ISO-8859-3", 1};
    case 'D':
      return {"ISO-8859-4", 1};
    case 'F':
      return {"ISO-8859-7", 1};
    case 'G':
      return {"ISO-8859-6", 1};
    case 'H':
      return {"ISO-8859-8", 1};
    case 'L':
      return {"ISO-8859-5", 1};
    case 'M':
      return {"ISO-8859-9", 1};
    case 'T':
      return {"ISO-8859-11", 1};
    case 'V':
      return {"ISO-8859-10", 1};
    case 'Y':
      return {"ISO-8859-13", 1};
    case '_':
      return {"ISO-8859-14", 1};
    case 'b':
      return {"ISO-8859-15", 1};
    case 'f':
      return {"ISO-8859-16", 1};
    default:
      return kUnknown;
  }
}

CharacterSet setOf94(char name) {
  switch (name) {
    case 'B':
      return kAscii;
    case 'I':
      return {"SHIFT_JIS", 1};  // half-width Katakana
    case 'J':
      return kAscii;  // differs in two characters: a yen sign and an overline
    default:
      return kUnknown;
  }
}

CharacterSet setOf94Squared(char name) {
  switch (name) {
    case 'A':
      return {"EUC-CN", 2};
    case 'B':
      return {"EUC-JP", 2};
    case 'C':
      return {"EUC-KR", 2};
    default:
      return {nullptr, 2};
  }
}

// The name comes from another program, so it is looked up here, never passed to iconv.
const char* encodingNamed(std::string_view name) {
  struct Named {
    std::string_view name;
    const char* encoding;
  };
  constexpr Named kNames[] = {
      {"big5-0", "BIG5"},
      {"gbk-0", "GBK"},
      {"gb18030.2000-0", "GB18030"},
      {"koi8-r", "KOI8-R"},
      {"koi8-u", "KOI8-U"},
      {"iso8859-15", "ISO-8859-15"},
      {"iso8859-16", "ISO-8859-16"},
      {"microsoft-cp1251", "CP1251"},
      {"microsoft-cp1255", "CP1255"},
      {"microsoft-cp1256", "CP1256"},
  };
  const std::string lower = lowerCaseAscii(name);
  const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                   [&](const Named& named) { return named.name == lower; });
  return found == std::end(kNames) ? nullptr : found->encoding;
}

struct Close {
  void operator()(iconv_t converter) const { iconv_close(converter); }
};

void appendConverted(std::string& out, std::string bytes, std::size_t bytesPerCharacter,
                     iconv_t converter) {
  iconv(converter, nullptr, nullptr, nullptr, nullptr);  // reset the state
  char* from = bytes.data();
  std::size_t left = bytes.size();
  while (left > 0) {
    char buffer[256];
    char* to = buffer;
    std::size_t room = sizeof buffer;
    const std::size_t result = iconv(converter, &from, &left, &to, &room);
    const int error = errno;
    out.append(buffer, to);
    if (result != std::size_t(-1) || error == E2BIG) continue;
    out += kReplacement;
    const std::size_t skipped = std::min(left, bytesPerCharacter);
    from += skipped;
    left -= skipped;
  }
}

// Caches open converters: opening one is slow, and a text may change its set at each character.
class Converters {
 public:
  // Appends `bytes` as UTF-8.
  void append(std::string& out, std::string bytes, const CharacterSet& set) {
    if (bytes.empty()) return;
    const iconv_t converter = set.encoding == nullptr ? nullptr : converterFrom(set.encoding);
    if (converter == nullptr) {
      out += kReplacement;
      return;
    }
    appendConverted(out, std::move(bytes), set.bytesPerCharacter, converter);
  }

 private:
  // Null when iconv does not know the encoding.
  iconv_t converterFrom(const char* encoding) {
    const auto [found, isNew] = converters_.try_emplace(encoding);
    if (isNew) {
      const iconv_t opened = iconv_open("UTF-8", encoding);
      if (opened != iconv_t(-1)) found->second.reset(opened);
    }
    return found->second.get();
  }

  std::map<std::string_view, std::unique_ptr<std::remove_pointer_t<iconv_t>, Close>> converters_;
};

class CompoundText {
 public:
  explicit CompoundText(std::string_view bytes) : rest_(bytes) {}

  std::string toUtf8() {
    while (!rest_.empty()) {
      if (rest_.starts_with(kToUtf8)) {
        readUtf8();
      } else if (rest_.front() == kEscape) {
        readEscape();
      } else if (rest_.front() == kDirection) {
        take(std::min(rest_.find(']'), rest_.size() - 1) + 1);
      } else {
        readCharacters();
      }
    }
    return std::move(out_);
  }

 private:
  std::string_view take(std::size_t count) {
    const auto taken = rest_.substr(0, count);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  static bool isControl(char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7F'; }
  static bool isUpper(char c) { return static_cast<unsigned char>(c) >= 0x80; }

  void readUtf8() {
    take(kToUtf8.size());
    appendValidUtf8(out_, take(std::min(rest_.find(kFromUtf8), rest_.size())));
    take(kFromUtf8.size());
  }

  // Escape, bytes from 0x20 to 0x2F, and a final byte that completes the sequence.
  void readEscape() {
    take(1);
    std::size_t length = 0;
    while (length < rest_.size() && rest_[length] >= ' ' && rest_[length] <= '/') ++length;
    const auto kind = take(length);
    if (rest_.empty()) return;
    const char name = take(1).front();
    if (kind == "(") lower_ = setOf94(name);
    if (kind == ")") upper_ = setOf94(name);
    if (kind == "-") upper_ = setOf96(name);
    if (kind == "$(") lower_ = setOf94Squared(name);
    if (kind == "$)") upper_ = setOf94Squared(name);
    if (kind == "%/") readNamedSegment();
  }

  // A length in two 7-bit bytes, then the name of the encoding, then the text.
  void readNamedSegment() {
    const auto size = take(2);
    if (size.size() < 2) return;
    const auto high = static_cast<unsigned char>(size[0]) & 0x7FU;
    const auto low = static_cast<unsigned char>(size[1]) & 0x7FU;
    const auto segment = take(high * 128 + low);
    const auto end = segment.find(kEndOfName);
    if (end == std::string_view::npos) return;
    converters_.append(out_, std::string(segment.substr(end + 1)),
                       {encodingNamed(segment.substr(0, end)), 1});
  }

  // The run of characters that lie in one half.
  void readCharacters() {
    if (isControl(rest_.front())) {  // same in all sets, including the space
      out_ += take(1);
      return;
    }
    const bool upper = isUpper(rest_.front());
    std::size_t length = 0;
    while (length < rest_.size() && isUpper(rest_[length]) == upper && !isControl(rest_[length]) &&
           rest_[length] != kDirection) {
      ++length;
    }
    const CharacterSet& set = upper ? upper_ : lower_;
    std::string bytes(take(length));
    if (set.encoding != kAscii.encoding) {
      for (char& byte : bytes) byte = static_cast<char>(static_cast<unsigned char>(byte) | 0x80U);
    }
    converters_.append(out_, std::move(bytes), set);
  }

  std::string_view rest_;
  Converters converters_;
  CharacterSet lower_ = kAscii;
  CharacterSet upper_ = kLatin1;
  std::string out_;
};

}  // namespace

std::string utf8FromCompoundText(std::string_view bytes) {
  return CompoundText(bytes).toUtf8();
}

}  // namespace tessum
