#include "core/workspace/wayland/front_source.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <memory>

#include "core/workspace/title.h"
#include "tests/support/bus/bus_linux.h"
#include "tests/workspace/wayland/fake_compositor.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

class FrontSourceWaylandTest : public testing::Test {
 protected:
  void start() {
    source_ = openWaylandFrontSource(
        loop_, clock_, WaylandConnection::open(loop_, clock_, FakeCompositor::kDisplay),
        DesktopEntries({}, {}), [this](const auto& notice) {
          notices_.push_back(notice.text);
          EXPECT_TRUE(notice.isFinal);
        });
    ASSERT_NE(source_, nullptr);
    source_->start([this](const std::optional<Front>& front, Moment since) {
      EXPECT_GE(since.seconds, latest_.seconds) << "a moment before the last one";
      latest_ = since;
      front_ = front;
      told_.push_back(!front ? "none"
                             : front->application.bundleIdentifier.value_or("?") +
                                   (front->title ? ": " + *front->title : ""));
    });
  }

  [[nodiscard]] bool comesTo(const std::string& text) {
    return runUntil(loop_, [&] { return told_.back() == text; });
  }

  SystemMainLoop loop_;
  const SystemSteadyClock clock_{};
  FakeCompositor compositor_;
  std::unique_ptr<FrontSource> source_;
  std::vector<std::string> notices_;
  Told told_;
  std::optional<Front> front_;
  Moment latest_;
};

TEST_F(FrontSourceWaylandTest, TellsTheActiveOfTheWindowsThatAreThere) {
  compositor_.showWindow("below", "secret", false);
  compositor_.showWindow("app", "a title", true);
  start();
  EXPECT_EQ(told_, Told{"app: a title"});
  EXPECT_EQ(front_->application, (RunningApplication{"app", "app", std::nullopt}));
  EXPECT_EQ(source_->way(), "Wayland (wlr-foreign-toplevel)");
}

TEST_F(FrontSourceWaylandTest, TellsNothingWithoutWindows) {
  start();
  EXPECT_EQ(told_, Told{"none"});
}

TEST_F(FrontSourceWaylandTest, AWindowCountsOnceAllOfItIsTold) {
  start();
  const auto window = compositor_.addWindow();
  compositor_.tellActive(window, true);
  compositor_.tellTitle(window, "first");
  compositor_.tellTitle(window, "second");
  compositor_.tellAppId(window, "app");
  compositor_.tellDone(window);
  ASSERT_TRUE(comesTo("app: second"));
  EXPECT_EQ(told_, (Told{"none", "app: second"}));
}

TEST_F(FrontSourceWaylandTest, AMomentWithoutAnActiveWindowIsNotTold) {
  const auto a = compositor_.showWindow("a", "", true);
  const auto b = compositor_.showWindow("b", "", false);
  start();
  compositor_.tellActive(a, false);
  compositor_.tellDone(a);
  compositor_.tellActive(b, true);
  compositor_.tellDone(b);
  ASSERT_TRUE(comesTo("b"));
  compositor_.tellClosed(b);
  ASSERT_TRUE(comesTo("none"));
  EXPECT_EQ(told_, (Told{"a", "b", "none"}));
}

TEST_F(FrontSourceWaylandTest, TextsOfAnyKindAreRead) {
  start();
  const auto window = compositor_.showWindow("\xFF\x01", "a\nb\x1B[0m\xC3", true);
  ASSERT_TRUE(comesTo("\uFFFD\x01: a\nb\x1B[0m\uFFFD"));
  const std::string longest(4000, 'x');
  compositor_.tellAppId(window, longest);
  compositor_.tellTitle(window, longest);
  compositor_.tellDone(window);
  ASSERT_TRUE(comesTo(longest + ": " + longest));
  compositor_.tellAppId(window, "");
  compositor_.tellTitle(window, "");
  compositor_.tellDone(window);
  EXPECT_TRUE(comesTo("?")) << "a window that says nothing counts if it stays";
}

// More at once would not fit into the socket, and the compositor would end the connection.
TEST_F(FrontSourceWaylandTest, TenThousandWindowsAreTold) {
  constexpr int kWindows = 10'000;
  constexpr int kAtOnce = 100;
  for (int i = 0; i < kAtOnce; ++i) compositor_.showWindow("before", std::to_string(i), true);
  start();
  EXPECT_EQ(told_, Told{"before: 99"});
  for (int i = kAtOnce; i < kWindows; ++i) {
    const auto window = compositor_.showWindow("after", std::to_string(i), true);
    if (i % kAtOnce == 0) {
      ASSERT_TRUE(comesTo("after: " + std::to_string(i)));
      compositor_.tellClosed(window);
    }
  }
  compositor_.showWindow("last", "", true);
  EXPECT_TRUE(comesTo("last"));
}

// A text that is too long for the protocol ends the connection.
TEST_F(FrontSourceWaylandTest, SaysWhyAWindowIsAlreadyTooMuchForTheCompositor) {
  compositor_.showWindow("app", std::string(1 << 20, 'x'), true);
  start();
  EXPECT_EQ(told_, Told{"none"});
  EXPECT_EQ(notices_, Told{"The Wayland compositor has ended the connection, as some do when a "
                           "window has a title of thousands of letters; nothing more can be "
                           "recorded."});
}

TEST_F(FrontSourceWaylandTest, EndsWithTheListOfWindows) {
  compositor_.showWindow("app", "", true);
  start();
  compositor_.tellFinished();
  ASSERT_TRUE(comesTo("none"));
  EXPECT_EQ(notices_,
            Told{"The Wayland compositor no longer reports its windows; nothing more can be "
                 "recorded."});
}

TEST_F(FrontSourceWaylandTest, EndsWithTheCompositorAndSaysSoOnce) {
  compositor_.showWindow("app", "", true);
  start();
  compositor_.stop();
  ASSERT_TRUE(comesTo("none"));
  EXPECT_TRUE(runUntil(loop_, [] { return true; }));
  EXPECT_EQ(notices_, Told{"The Wayland display has gone away; nothing more can be recorded."});
}

TEST_F(FrontSourceWaylandTest, WithoutACompositorThereIsNoConnection) {
  for (const char* name : {"missing", "/nonexistent/missing", ""}) {
    EXPECT_EQ(WaylandConnection::open(loop_, clock_, name), nullptr) << name;
  }
  EXPECT_EQ(WaylandConnection::open(loop_, clock_, std::string(4000, 'x')), nullptr);
}

TEST_F(FrontSourceWaylandTest, ACompositorThatSpeaksNonsenseIsRefused) {
  const TemporaryFolder folder;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = folder.file("nonsense");
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(bind(listener.number(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener.number(), 1), 0);
  std::thread server([&] {
    const Descriptor peer(accept(listener.number(), nullptr, nullptr));
    EXPECT_EQ(writeAll(peer.number(), std::string(64, '\xAB')), 0);
  });
  EXPECT_THROW(static_cast<void>(WaylandConnection::open(loop_, clock_, path)),
               WorkspaceUnavailable);
  server.join();
}

}  // namespace
}  // namespace tessum
