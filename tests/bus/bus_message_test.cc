#include "core/bus/bus_message.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/bus/bus_draft_linux.h"

namespace tessum {
namespace {

// A message with these values, read as `Values`.
template <typename... Values, typename... Appended>
std::optional<std::tuple<Values...>> readAfter(const char* types, Appended... appended) {
  BusDraft draft;
  EXPECT_GE(sd_bus_message_append(draft.message(), types, appended...), 0);
  return BusMessage(draft.sealed()).read<Values...>();
}

TEST(BusMessage, ReadsEachBasicType) {
  EXPECT_EQ((readAfter<bool, bool>("bb", 1, 0)), std::tuple(true, false));
  EXPECT_EQ((readAfter<std::uint32_t>("u", UINT32_MAX)), std::tuple(UINT32_MAX));
  EXPECT_EQ((readAfter<std::uint64_t>("t", UINT64_MAX)), std::tuple(UINT64_MAX));
  EXPECT_EQ((readAfter<double>("d", -0.5)), std::tuple(-0.5));
  EXPECT_EQ((readAfter<std::string, std::string>("ss", "", "Zürich")),
            std::tuple(std::string(), std::string("Zürich")));
  EXPECT_EQ((readAfter<BusObjectPath>("o", "/a/b")), std::tuple(BusObjectPath{"/a/b"}));
}

TEST(BusMessage, ReadsContainers) {
  using Pairs = std::vector<std::tuple<std::string, std::uint32_t>>;
  EXPECT_EQ((readAfter<Pairs>("a(su)", 2, "a", 1, "b", 2)), std::tuple(Pairs{{"a", 1}, {"b", 2}}));
  EXPECT_EQ((readAfter<Pairs>("a(su)", 0)), std::tuple(Pairs{}));
  EXPECT_EQ((readAfter<BusVariant<bool>>("v", "b", 1)), std::tuple(BusVariant<bool>{true}));
  using Texts = std::vector<std::string>;
  EXPECT_EQ((readAfter<BusVariant<Texts>>("v", "as", 1, "a")),
            std::tuple(BusVariant<Texts>{{"a"}}));
}

TEST(BusMessage, ReadsADictionary) {
  const auto read =
      readAfter<BusDictionary>("a{sv}", 6, "flag", "b", 1, "number", "d", 2.5, "text", "s", "x",
                               "other", "as", 2, "y", "z", "text", "s", "again", "last", "b", 0);
  ASSERT_TRUE(read);
  const auto& [dictionary] = *read;
  EXPECT_EQ(valueOf<bool>(dictionary, "flag"), true);
  EXPECT_EQ(valueOf<double>(dictionary, "number"), 2.5);
  EXPECT_EQ(valueOf<std::string>(dictionary, "text"), "x");
  EXPECT_EQ(valueOf<bool>(dictionary, "last"), false);
  EXPECT_TRUE(dictionary.contains("other"));
  EXPECT_FALSE(valueOf<std::string>(dictionary, "other"));
  EXPECT_FALSE(valueOf<double>(dictionary, "text"));
  EXPECT_FALSE(valueOf<bool>(dictionary, "none"));
  EXPECT_EQ(readAfter<BusDictionary>("a{sv}", 0), std::tuple(BusDictionary()));
  EXPECT_FALSE(readAfter<BusDictionary>("a{ss}", 0));
}

TEST(BusMessage, GivesADescriptorThatOutlivesIt) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);
  const auto read = readAfter<Descriptor>("h", writeEnd.number());
  ASSERT_TRUE(read);
  ASSERT_EQ(writeEnd.close(), 0);
  const int number = std::get<0>(*read).number();
  EXPECT_EQ(write(number, "x", 1), 1);
  EXPECT_NE(fcntl(number, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(BusMessage, GivesNothingOfOtherTypes) {
  EXPECT_FALSE(readAfter<bool>("u", 1));
  EXPECT_FALSE(readAfter<bool>("s", "true"));
  EXPECT_FALSE(readAfter<bool>("v", "b", 1));
  EXPECT_FALSE(readAfter<bool>(""));
  EXPECT_FALSE(readAfter<std::string>("o", "/a"));
  EXPECT_FALSE((readAfter<std::vector<std::string>>("ao", 1, "/a")));
  EXPECT_FALSE(readAfter<BusVariant<bool>>("v", "s", "true"));
  EXPECT_FALSE(readAfter<BusVariant<bool>>("v", "v", "b", 1));
}

TEST(BusMessage, GivesNothingOfMoreOrFewerValues) {
  EXPECT_FALSE(readAfter<bool>("bb", 1, 1));
  EXPECT_FALSE((readAfter<bool, bool>("b", 1)));
  EXPECT_FALSE((readAfter<std::vector<std::tuple<std::string, std::string>>>("a(sss)", 0)));
}

TEST(BusMessage, IsReadAnyNumberOfTimes) {
  BusDraft draft;
  ASSERT_GE(sd_bus_message_append(draft.message(), "as", 2, "a", "b"), 0);
  const BusMessage message(draft.sealed());
  EXPECT_FALSE(message.readOne<bool>());
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(message.readOne<std::vector<std::string>>(), (std::vector<std::string>{"a", "b"}));
  }
}

}  // namespace
}  // namespace tessum
