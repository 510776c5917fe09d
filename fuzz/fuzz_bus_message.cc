// Messages with any types, read with the types that the program uses: a message is read only if its
// types match exactly, and the values are those it holds.

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "core/base/check.h"
#include "core/bus/bus_message.h"
#include "fuzz/input.h"
#include "tests/support/bus/bus_draft_linux.h"

namespace {

using tessum::BusMessage;
using tessum::BusObjectPath;
using tessum::BusVariant;
using tessum::FuzzInput;

// Stays within D-Bus's own limits, which are not tested here.
constexpr int kDeepest = 4;
constexpr std::size_t kLongest = 60;

// One complete type of D-Bus.
std::string takeType(FuzzInput& input, int depth = 0) {
  const std::string basic = "busotidynqx";
  const std::size_t choice = input.takeByte() % (basic.size() + (depth < kDeepest ? 3 : 0));
  if (choice < basic.size()) return basic.substr(choice, 1);
  if (choice == basic.size()) return "v";
  if (choice == basic.size() + 1) return "a" + takeType(input, depth + 1);
  std::string members;
  for (int i = input.takeByte() % 6; i >= 0; --i) members += takeType(input, depth + 1);
  return members.size() < kLongest ? "(" + members + ")" : "b";
}

// The length of the first complete type in the signature.
std::size_t lengthOfFirst(const std::string& types, std::size_t start) {
  if (types[start] == 'a') return 1 + lengthOfFirst(types, start + 1);
  if (types[start] != '(') return 1;
  std::size_t end = start + 1;
  while (types[end] != ')') end += lengthOfFirst(types, end);
  return end + 1 - start;
}

// A string or path that D-Bus allows.
std::string takeName(FuzzInput& input, const char* start) {
  std::string text = start;
  for (int i = input.takeByte() % 8; i > 0; --i)
    text += static_cast<char>('a' + input.takeByte() % 26);
  return text;
}

void appendValues(sd_bus_message* message, const std::string& types, FuzzInput& input, int depth);

void appendContainer(sd_bus_message* message, char kind, const std::string& contents, int count,
                     FuzzInput& input, int depth) {
  bool isMade = sd_bus_message_open_container(message, kind, contents.c_str()) >= 0;
  for (int i = 0; i < count; ++i) appendValues(message, contents, input, depth + 1);
  isMade = isMade && sd_bus_message_close_container(message) >= 0;
  TESSUM_CHECK(isMade, "a container could not be made");
}

void appendValues(sd_bus_message* message, const std::string& types, FuzzInput& input, int depth) {
  for (std::size_t start = 0; start < types.size(); start += lengthOfFirst(types, start)) {
    const char type = types[start];
    const std::string inner =
        types.substr(start + 1, lengthOfFirst(types, start) - (type == '(' ? 2 : 1));
    if (type == 'v') {
      appendContainer(message, type, takeType(input, depth + 1), 1, input, depth);
    } else if (type == 'a') {
      appendContainer(message, type, inner, input.takeByte() % 4, input, depth);
    } else if (type == '(') {
      appendContainer(message, 'r', inner, 1, input, depth);
    } else if (type == 's' || type == 'o') {
      const std::string text = takeName(input, type == 'o' ? "/" : "");
      TESSUM_CHECK(sd_bus_message_append_basic(message, type, text.c_str()) >= 0, "no text");
    } else {
      const double enoughForAny = input.takeDouble();
      TESSUM_CHECK(sd_bus_message_append_basic(message, type, &enoughForAny) >= 0, "no number");
    }
  }
}

// `signature` is that of the values; for a variant, the contents decide, too.
template <typename... Values>
void checkRead(const BusMessage& message, const std::string& types, const std::string& signature) {
  const auto values = message.read<Values...>();
  if (types != signature) TESSUM_CHECK(!values, "a message of another shape was read");
  const bool hasVariant = signature.find('v') != std::string::npos;
  if (types == signature && !hasVariant) TESSUM_CHECK(values.has_value(), "it was not read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  tessum::BusDraft draft;
  std::string types;
  for (int i = input.takeByte() % 4; i > 0; --i) types += takeType(input);
  appendValues(draft.message(), types, input, 0);
  const BusMessage message(draft.sealed());

  using Text = std::string;
  checkRead<>(message, types, "");
  checkRead<bool>(message, types, "b");
  checkRead<std::uint32_t>(message, types, "u");
  checkRead<Text>(message, types, "s");
  checkRead<Text, BusObjectPath>(message, types, "so");
  checkRead<Text, Text, Text>(message, types, "sss");
  checkRead<BusObjectPath>(message, types, "o");
  checkRead<std::vector<BusObjectPath>>(message, types, "ao");
  checkRead<std::vector<std::tuple<Text, Text>>>(message, types, "a(ss)");
  checkRead<std::vector<std::tuple<Text, Text, Text, Text, std::uint32_t, std::uint32_t>>>(
      message, types, "a(ssssuu)");
  checkRead<BusVariant<bool>>(message, types, "v");
  checkRead<BusVariant<Text>>(message, types, "v");
  checkRead<BusVariant<std::vector<std::tuple<Text, Text>>>>(message, types, "v");
  return 0;
}
