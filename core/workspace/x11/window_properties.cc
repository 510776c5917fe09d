#include "core/workspace/x11/window_properties.h"

#include <string_view>
#include <utility>

#include "core/base/check.h"
#include "core/base/text.h"
#include "core/workspace/title.h"
#include "core/workspace/x11/compound_text.h"

namespace tessum {
namespace {

// The index of each property in windowPropertyNames().
enum Place : std::size_t {
  kNetName,
  kName,
  kApplicationId,
  kDesktopFile,
  kWindowClass,
  kProcess,
  kClientMachine,
  kPlaces,
};

// The text of a property; the first if there are several, separated by zero bytes.
std::optional<std::string> textOf(const std::optional<X11Property>& property,
                                  const X11Atoms& atoms) {
  if (!property || property->bitsPerItem != 8) return std::nullopt;
  const std::string_view bytes(property->bytes.c_str());
  if (property->type == atoms.utf8String) return validUtf8(bytes);
  if (property->type == atoms.compoundText) return utf8FromCompoundText(bytes);
  return utf8FromLatin1(bytes);
}

// The text cut to the longest name; absent when empty.
std::optional<std::string> nameFrom(std::optional<std::string> text) {
  if (!text || text->empty()) return std::nullopt;
  return cutToLength(*std::move(text), kLongestName);
}

// The second text of WM_CLASS, after the first one's zero byte.
std::optional<std::string> secondTextOf(const std::optional<X11Property>& property) {
  if (!property || property->bitsPerItem != 8) return std::nullopt;
  const auto end = property->bytes.find('\0');
  if (end == std::string::npos) return std::nullopt;
  return utf8FromLatin1(std::string_view(property->bytes.c_str() + end + 1));
}

std::optional<std::int32_t> processOf(const std::optional<X11Property>& property) {
  const auto number = property ? property->number() : std::nullopt;
  if (!number || *number == 0 || !std::in_range<std::int32_t>(*number)) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

}  // namespace

std::vector<std::uint32_t> windowPropertyNames(const X11Atoms& atoms) {
  std::vector<std::uint32_t> names(kPlaces);
  names[kNetName] = atoms.netName;
  names[kName] = atoms.name;
  names[kApplicationId] = atoms.applicationId;
  names[kDesktopFile] = atoms.desktopFile;
  names[kWindowClass] = atoms.windowClass;
  names[kProcess] = atoms.process;
  names[kClientMachine] = atoms.clientMachine;
  return names;
}

X11Window readWindowProperties(std::uint32_t window, const X11Properties& properties,
                               const X11Atoms& atoms) {
  TESSUM_CHECK(properties.size() == kPlaces, "not the properties of windowPropertyNames()");
  const auto name = [&](Place place) { return nameFrom(textOf(properties[place], atoms)); };
  X11Window read;
  read.description = {.window = window,
                      .applicationId = name(kApplicationId),
                      .desktopFile = name(kDesktopFile),
                      .instance = name(kWindowClass),
                      .windowClass = nameFrom(secondTextOf(properties[kWindowClass])),
                      .process = processOf(properties[kProcess]),
                      .clientMachine = name(kClientMachine)};
  auto title = textOf(properties[kNetName], atoms);
  if (!title) title = textOf(properties[kName], atoms);
  if (title) read.title = titleFrom(*std::move(title));
  return read;
}

}  // namespace tessum
