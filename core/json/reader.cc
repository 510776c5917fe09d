#include "core/json/reader.h"

#include <simdjson.h>

#include <optional>
#include <utility>

#include "core/base/limits.h"
#include "core/base/text.h"
#include "core/json/number.h"

namespace tessum::json {
namespace {

namespace ondemand = simdjson::ondemand;

static_assert(kPadding >= simdjson::SIMDJSON_PADDING);

[[noreturn]] void fail(simdjson::error_code error) {
  throw DecodingError(std::string("The text is not valid JSON: ") + simdjson::error_message(error));
}

[[noreturn]] void failForMoreText() {
  throw DecodingError("The text is not valid JSON: more text follows the value");
}

template <typename T>
T checked(simdjson::simdjson_result<T> result) {
  T value;
  if (const auto error = std::move(result).get(value)) fail(error);
  return value;
}

bool isWhiteSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

// The parser accepts an escaped low surrogate without its high one, as three bytes.
std::string_view withoutSurrogates(std::string_view text) {
  for (auto at = text.find('\xED'); at != std::string_view::npos; at = text.find('\xED', at + 1)) {
    if (static_cast<unsigned char>(text[at + 1]) >= 0xA0) {
      throw DecodingError("The text is not valid JSON: a lone surrogate in a string");
    }
  }
  return text;
}

enum class Kind { null, boolean, number, text, array, object };

// The kind of a value, by its first character. What begins no other kind is taken for a number,
// whose whole text is checked later.
Kind kindOf(std::string_view value) {
  switch (value.empty() ? '\0' : value.front()) {
    case '{':
      return Kind::object;
    case '[':
      return Kind::array;
    case '"':
      return Kind::text;
    case 't':
    case 'f':
      return Kind::boolean;
    case 'n':
      return Kind::null;
    default:
      return Kind::number;
  }
}

// Values are visited in two ways. This one only checks them.
struct Checking {
  struct Result {};
  struct Array {
    void add(Result) {}
  };
  struct Object {
    void add(std::string_view, Result) {}
  };
  static Result scalar(Kind, std::string_view) { return {}; }
  static Result string(std::string_view) { return {}; }
  template <typename Items>
  static Result container(Items) {
    return {};
  }
};

// This one makes a Value of them.
struct Building {
  using Result = Value;
  struct Array {
    Value::Array items;
    void add(Value value) { items.push_back(std::move(value)); }
  };
  struct Object {
    Value::Object items;
    void add(std::string_view key, Value value) {
      items.insert_or_assign(std::string(key), std::move(value));
    }
  };
  static Value scalar(Kind kind, std::string_view token) {
    if (kind == Kind::boolean) return token == "true";
    if (kind == Kind::number) return Number{std::string(token)};
    return {};
  }
  static Value string(std::string_view text) { return text; }
  template <typename Items>
  static Value container(Items items) {
    return std::move(items.items);
  }
};

// A token that is neither a string nor a bracket. It is checked here, as the parser checks only
// what it is asked to decode.
template <typename Maker>
typename Maker::Result makeScalar(std::string_view token) {
  const Kind kind = kindOf(token);
  const bool isValid = kind == Kind::boolean ? token == "true" || token == "false"
                       : kind == Kind::null  ? token == "null"
                                             : isNumber(token);
  if (!isValid) throw DecodingError("The text is not valid JSON: an unknown word or number");
  return Maker::scalar(kind, token);
}

template <typename Maker>
typename Maker::Result visit(ondemand::value value, int depth);

template <typename Maker>
typename Maker::Result visitArray(ondemand::array elements, int depth) {
  typename Maker::Array items;
  for (auto element : elements) items.add(visit<Maker>(checked(std::move(element)), depth));
  return Maker::container(std::move(items));
}

template <typename Maker>
typename Maker::Result visitObject(ondemand::object members, int depth) {
  typename Maker::Object items;
  for (auto member : members) {
    ondemand::field field = checked(std::move(member));
    const std::string_view key = withoutSurrogates(checked(field.unescaped_key()));
    items.add(key, visit<Maker>(field.value(), depth));
  }
  return Maker::container(std::move(items));
}

void checkDepth(int depth) {
  if (depth > limits::kJsonNesting) throw DecodingError("The text is nested too deeply");
}

// `depth` counts the containers around the value.
template <typename Maker>
typename Maker::Result visit(ondemand::value value, int depth) {
  switch (checked(value.type())) {
    case ondemand::json_type::array:
      checkDepth(depth + 1);
      return visitArray<Maker>(checked(value.get_array()), depth + 1);
    case ondemand::json_type::object:
      checkDepth(depth + 1);
      return visitObject<Maker>(checked(value.get_object()), depth + 1);
    case ondemand::json_type::string:
      return Maker::string(withoutSurrogates(checked(value.get_string())));
    default:
      return makeScalar<Maker>(trimmed(value.raw_json_token()));
  }
}

// A text and its parser, whose index takes up to four bytes for each byte of the text.
class Document {
 public:
  explicit Document(PaddedView view) : text_(view.text()) {
    if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
    text_ = trimmed(text_);
    if (text_.empty()) fail(simdjson::EMPTY);
    const simdjson::padded_string_view padded(text_.data(), text_.size(), text_.size() + kPadding);
    if (const auto error = parser_.iterate(padded).get(document_)) fail(error);
  }

  ondemand::document* operator->() { return &document_; }

  // The text without white space around it: of a scalar, its one token.
  [[nodiscard]] std::string_view text() const { return text_; }

  void expectEnd() {
    // The end has no location. Every version of the parser can be asked this way.
    if (document_.current_location().error() != simdjson::OUT_OF_BOUNDS) failForMoreText();
  }

 private:
  std::string_view text_;
  ondemand::parser parser_;
  ondemand::document document_;
};

// Visits a whole document. The parser offers no value for a top-level scalar: a string is read as
// the only element of an array, any other scalar from its token.
template <typename Maker>
typename Maker::Result visitDocument(Document& document) {
  switch (kindOf(document.text())) {
    case Kind::array:
    case Kind::object: {
      auto result = visit<Maker>(checked(document->get_value()), 0);
      document.expectEnd();
      return result;
    }
    case Kind::text: {
      const PaddedString wrapped("[" + std::string(document.text()) + "]");
      Document array(wrapped.view());
      std::optional<typename Maker::Result> result;
      for (auto element : checked(array->get_array())) {
        const ondemand::value value = checked(std::move(element));
        if (result) failForMoreText();
        result = visit<Maker>(value, 0);
      }
      array.expectEnd();
      return *std::move(result);
    }
    default:
      return makeScalar<Maker>(document.text());
  }
}

}  // namespace

Value parse(PaddedView text) {
  Document document(text);
  return visitDocument<Building>(document);
}

Value parse(std::string_view text) {
  return parse(PaddedString(text).view());
}

void forEachMember(PaddedView text, const VisitMember& visitMember) {
  Document document(text);
  if (kindOf(document.text()) != Kind::object) {
    visitDocument<Checking>(document);
    throw DecodingError("expected an object");
  }
  for (auto member : checked(document->get_object())) {
    ondemand::field field = checked(std::move(member));
    const std::string_view key = withoutSurrogates(checked(field.unescaped_key()));
    ondemand::value value = field.value();
    std::string_view source = trimmed(value.raw_json_token());
    std::optional<std::string_view> string;
    const Kind kind = kindOf(source);
    if (kind == Kind::text) {
      string = withoutSurrogates(checked(value.get_string()));
    } else {
      visit<Checking>(value, 1);
    }
    if (kind == Kind::array || kind == Kind::object) {
      const char* next = checked(document->current_location());
      source = trimmed({source.data(), static_cast<std::size_t>(next - source.data())});
    }
    const auto begin = static_cast<std::size_t>(source.data() - text.text().data());
    visitMember({key, text.substr(begin, source.size()), string});
  }
  document.expectEnd();
}

}  // namespace tessum::json
