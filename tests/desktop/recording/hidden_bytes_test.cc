// Random windows under random rules: no file contains anything that was hidden.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>

#include "core/store/database.h"
#include "desktop/recording/recording.h"
#include "desktop/recording/session_journal.h"
#include "desktop/settings/settings_reader.h"
#include "tests/support/environment.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"
#include "tests/support/folder_contents.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// Notes everything, then passes it to the journal.
class Witness final : public SessionWriter {
 public:
  explicit Witness(SessionJournal& journal) : journal_(journal) {}

  std::int64_t insert(const Activity& activity) override {
    seen += activity.appName + "\n" + activity.title.value_or("") + "\n";
    return journal_.insert(activity);
  }
  void updateTitle(std::int64_t id, const std::string& title) override {
    seen += title + "\n";
    journal_.updateTitle(id, title);
  }
  void updateEndTime(std::int64_t id, Date end) override { journal_.updateEndTime(id, end); }

  std::string seen;  // every text, one per line

 private:
  SessionJournal& journal_;
};

constexpr const char* kWords[] = {"Alder", "Birch", "Cedar", "Dogwood", "Elder"};

// Everything happens at whole seconds, so it is clear what may be written in each.
class HiddenBytes : public testing::TestWithParam<unsigned> {
 protected:
  HiddenBytes() { const Database made(path_, calendar_); }

  [[nodiscard]] int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
  [[nodiscard]] std::string word() { return kWords[upTo(4)]; }

  // A word and a unique number.
  [[nodiscard]] std::string newText() { return word() + " " + std::to_string(++number_) + "."; }

  [[nodiscard]] std::string randomRule() {
    switch (upTo(3)) {
      case 0:
        return "[[hide]]\napp = '" + word() + "'\n";
      case 1:
        return "[[hide]]\ntitle = '(?i)" + word() + "'\n";
      case 2:
        return "[[hide]]\ntitle = '" + word() + "'\nkeep = 'app'\n";
      default:
        break;
    }
    const int minute = upTo(8);
    return "[[hide]]\nbetween = '00:0" + std::to_string(minute) + "-00:0" +
           std::to_string(minute + 1) + "'\n";
  }

  void changeRules() {
    std::string text;
    for (int count = upTo(3); count > 0; --count) text += randomRule();
    settings_.hide = readSettings(text).rules.hide;
    recording_.obey(settings_);
  }

  void changePause() {
    pause_.reset();
    if (upTo(2) == 0) pause_ = Pause{movedBy(clock_.now(), upTo(20))};
    recording_.pause(pause_);
  }

  void changeFront() {
    if (!front_ || upTo(3) == 0) {
      front_ = Front{{newText(), std::nullopt, std::nullopt}, std::nullopt};
      texts_.insert(*front_->application.localizedName);
    }
    front_->title.reset();
    if (upTo(5) > 0) {
      front_->title = newText();
      texts_.insert(*front_->title);
    }
    recording_.show(front_, steady_.now());
  }

  void changeSomething() {
    const int kind = upTo(29);
    if (kind < 2) changeRules();
    if (kind == 2) changePause();
    if (kind == 3) recording_.tick();
    if (kind > 3 && kind < 15) changeFront();
  }

  // Notes the texts that may be written now.
  void noteWhatIsShown() {
    const bool isPaused = pause_ && secondsBetween(clock_.now(), *pause_->until) > 0;
    if (!front_ || isPaused) return;
    const auto& name = front_->application.localizedName;
    const Kept kept =
        judge(settings_.hide, {name, std::nullopt, front_->title}, wallTime(clock_.now())).kept;
    if (kept != Kept::nothing) shown_.insert(*name);
    if (kept == Kept::all && front_->title) shown_.insert(*front_->title);
  }

  const ScopedVariable zone_{"TZ", "UTC"};
  const TemporaryFolder folder_;
  const std::string path_ = folder_.file("activities.db");
  const SystemCalendar calendar_{};
  FakeClock clock_;
  const FakeSteadyClock steady_{clock_};
  FakeMainLoop loop_{clock_};
  ThreadQueue queue_{"test"};
  SessionJournal journal_{path_, loop_, queue_, [](const std::string&) {}};
  std::shared_ptr<Witness> witness_ = std::make_shared<Witness>(journal_);
  RecordingSettings settings_;
  Recording recording_{witness_, clock_, steady_, loop_, settings_, [] {}};

  std::mt19937 random_{GetParam()};
  int number_ = 0;
  std::optional<Front> front_;
  std::optional<Pause> pause_;
  std::set<std::string> texts_;  // all texts so far
  std::set<std::string> shown_;  // texts that were allowed at some time
};

TEST_P(HiddenBytes, AreInNoFileAndReachNoWriter) {
  while (clock_.now().secondsSince1970 < 600) {
    changeSomething();
    noteWhatIsShown();
    loop_.advance(1);
    noteWhatIsShown();
  }
  recording_.stop();
  ASSERT_TRUE(journal_.finish(60));

  std::string written = witness_->seen;
  for (const std::string& name : namesIn(folder_.path())) written += readFile(folder_.file(name));
  std::size_t found = 0;
  for (const std::string& text : texts_) {
    const bool isWritten = written.find(text) != std::string::npos;
    if (isWritten) ++found;
    EXPECT_TRUE(!isWritten || shown_.count(text) > 0) << text;
  }
  EXPECT_GT(found, 0U);
  EXPECT_LT(shown_.size(), texts_.size());
}

INSTANTIATE_TEST_SUITE_P(All, HiddenBytes, testing::Range(1U, 21U));

}  // namespace
}  // namespace tessum
