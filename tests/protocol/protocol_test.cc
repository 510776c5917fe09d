#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/protocol/transcript.h"

namespace tessum {
namespace {

std::vector<std::string> transcripts() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(TESSUM_TRANSCRIPTS)) {
    names.push_back(file.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class Transcript : public testing::TestWithParam<std::string> {};

TEST_P(Transcript, IsHowTheConversationGoes) {
  playTranscript(std::string(TESSUM_TRANSCRIPTS) + "/" + GetParam() + ".txt");
}

INSTANTIATE_TEST_SUITE_P(Protocol, Transcript, testing::ValuesIn(transcripts()),
                         [](const auto& name) { return name.param; });

}  // namespace
}  // namespace tessum
