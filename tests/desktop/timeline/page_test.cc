// The picture of a day: the page as text, and as a real browser lays it out.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "core/json/reader.h"
#include "tests/desktop/user.h"
#include "tests/support/child_process.h"

namespace tessum {
namespace {

constexpr char kMarkup[] = "</title><script>alert(1)</script><img src=x onerror=alert(2)> & \"'";
constexpr char kMarkupEscaped[] =
    "&lt;/title&gt;&lt;script&gt;alert(1)&lt;/script&gt;&lt;img src=x onerror=alert(2)&gt; &amp; "
    "&quot;&#39;";

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t times = 0;
  for (std::size_t i = 0; (i = text.find(part, i)) != std::string::npos; ++i) ++times;
  return times;
}

class Timeline : public testing::Test {
 protected:
  Timeline() {
    Database database = user.database();
    user.addSession("Editor", "main.cc", "2025-03-04T09:00:00Z", "2025-03-04T11:00:00Z");
    user.addSession("Browser", kMarkup, "2025-03-04T11:00:00Z", "2025-03-04T12:00:00Z");
    user.addSession("Editor", "day.cc", "2025-03-04T12:30:00Z", "2025-03-04T13:00:00Z");
    database.insertAnnotation({.id = {},
                               .text = "Review of the budget",
                               .startedAt = at("2025-03-04T09:00:00Z"),
                               .endedAt = {}});
    database.endCurrentAnnotation(at("2025-03-04T10:00:00Z"));
  }

  std::string page(const std::string& day = "2025-03-04") {
    const Outcome outcome = user.run({"timeline", day, "-o", user.file("day.html")});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return readFile(user.file("day.html"));
  }

  User user;
};

TEST_F(Timeline, ShowsSpansTotalsAndTitles) {
  const std::string html = page();
  EXPECT_TRUE(contains(html, "<h1>Tuesday, 4 March 2025</h1>"));
  EXPECT_TRUE(contains(html, ">3h 30m in 3 sessions · 1 note</p>"));
  EXPECT_TRUE(contains(html, "<title>Editor\nmain.cc\n09:00–11:00, 2h 0m</title>"));
  EXPECT_TRUE(contains(html, "<title>Review of the budget\n09:00–10:00, 1h 0m</title>"));
  EXPECT_TRUE(contains(html, ">2h 30m</text>"));
  EXPECT_TRUE(contains(html, ">71%</text>"));
}

TEST_F(Timeline, KeepsMarkupInATitleText) {
  const std::string html = page();
  EXPECT_TRUE(contains(html, kMarkupEscaped));
  EXPECT_EQ(count(html, "<script"), 2U) << "the page's own, and the data";
  EXPECT_EQ(count(html, "</script"), 2U);
  EXPECT_FALSE(contains(html, "<img"));
}

TEST_F(Timeline, NamesNothingThatCouldBeFetched) {
  std::string html = page();
  EXPECT_TRUE(contains(html, "content=\"default-src 'none'; script-src 'sha256-"));
  EXPECT_FALSE(contains(html, "unsafe"));
  // The title with markup comes from the history; the rest is the page's own.
  for (std::size_t begin = 0; (begin = html.find(kMarkupEscaped)) != std::string::npos;) {
    html.erase(begin, sizeof kMarkupEscaped - 1);
  }
  html.erase(html.find("<script type=\"application/json\""));
  for (const char* word : {"http:", "https:", "url(", "@import", "src=", "href", "<link", "<iframe",
                           "<object", "<use", "<image", "fetch(", "import(", "XMLHttpRequest",
                           "WebSocket", "sendBeacon", "innerHTML", "eval("}) {
    EXPECT_FALSE(contains(html, word)) << word;
  }
}

TEST_F(Timeline, IsForTheUserAlone) {
  (void)page();
  struct stat status {};
  ASSERT_EQ(stat(user.file("day.html").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);

  // The page in the data folder was open to others once.
  const std::string path = user.dataFolder() + "/timeline.html";
  writeFile(path, "");
  chmod(path.c_str(), 0644);
  user.set("PATH", "/nowhere");  // without a browser
  ASSERT_EQ(user.run({"timeline", "2025-03-04"}).status, 0);
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(Timeline, OpensInTheBrowserUnlessAFileIsNamed) {
  const std::string told = user.file("told");
  std::filesystem::create_directory(user.file("bin"));
  writeFile(user.file("bin/xdg-open"), "#!/bin/sh\nprintf %s \"$1\" > '" + told + ".part'\nmv '" +
                                           told + ".part' '" + told + "'\n");
  chmod(user.file("bin/xdg-open").c_str(), 0700);
  user.set("PATH", user.file("bin") + ":/usr/bin:/bin");
  (void)page();
  const Outcome outcome = user.run({"timeline", "2025-03-04"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  ChildProcess wait("sh", {.arguments = {"-c", "for i in $(seq 600); do [ -e '" + told +
                                                   "' ] && exit 0; sleep 0.1; done; exit 1"}});
  ASSERT_EQ(wait.finish(), kSuccess) << "no browser was started";
  EXPECT_EQ(readFile(told), "file://" + user.dataFolder() + "/timeline.html");
  EXPECT_EQ(readFile(user.dataFolder() + "/timeline.html"), page());
}

TEST_F(Timeline, ReplacesNoFolder) {
  std::filesystem::create_directory(user.file("folder"));
  const Outcome outcome = user.run({"timeline", "2025-03-04", "-o", user.file("folder")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.errors, "is not a file that can be replaced"));
}

TEST_F(Timeline, OfADayWithoutRecordsIsAPageToo) {
  EXPECT_TRUE(contains(page("2024-01-01"), "Nothing was recorded on this day."));
}

TEST_F(Timeline, OfADayWhenTheClockIsChangedHasThatDaysHours) {
  user.set("TZ", "Europe/Berlin");
  // From 00:00 to 05:00, without 02:00.
  user.addSession("Night", nullptr, "2025-03-29T23:00:00Z", "2025-03-30T03:00:00Z");
  // From 00:00 to 04:00, with 02:00 twice.
  user.addSession("Night", nullptr, "2025-10-25T22:00:00Z", "2025-10-26T03:00:00Z");
  const auto shown = [](const std::string& hour) { return ">" + hour + "</text>"; };
  const std::string spring = page("2025-03-30");
  EXPECT_EQ(count(spring, shown("01:00")), 1U);
  EXPECT_EQ(count(spring, shown("02:00")), 0U);
  EXPECT_EQ(count(spring, shown("03:00")), 1U);
  const std::string autumn = page("2025-10-26");
  EXPECT_EQ(count(autumn, shown("02:00")), 2U);
}

////////////////////////////////////////////////////////////////////////////////////////////////
// The picture that the page is without its script, in the browser. A script in a copy of the page
// measures the layout; the page's policy would forbid it, so the copy has none.

constexpr char kMeasure[] = R"(<script>
addEventListener('load', () => {
  const box = e => { const b = e.getBoundingClientRect();
                     return {left: b.left, right: b.right, top: b.top, bottom: b.bottom}; };
  const spans = [...document.querySelectorAll('.session, .note')].map(e =>
    ({kind: e.classList[0], title: e.querySelector('title').textContent, box: box(e),
      isColoured: getComputedStyle(e).fill !== 'rgb(0, 0, 0)'}));
  const totals = [...document.querySelectorAll('.total')].map(e => e.textContent);
  const result = {spans, totals, images: document.images.length,
                  scripts: document.scripts.length,
                  fetched: performance.getEntriesByType('resource').length,
                  overflow: document.documentElement.scrollWidth > innerWidth};
  const out = document.createElement('pre');
  out.id = 'result';
  out.textContent = btoa(unescape(encodeURIComponent(JSON.stringify(result))));
  document.body.append(out);
});
</script>)";

std::optional<std::string> browser() {
  for (const char* path :
       {"/usr/bin/chromium", "/usr/bin/chromium-browser", "/usr/bin/google-chrome"}) {
    if (std::filesystem::exists(path)) return path;
  }
  return std::nullopt;
}

std::string decodedBase64(const std::string& text) {
  std::string out;
  unsigned bits = 0;
  int count = 0;
  for (const char c : text) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto digit = kDigits.find(c);
    if (digit == std::string_view::npos) break;
    bits = bits << 6 | static_cast<unsigned>(digit);
    count += 6;
    if (count >= 8) {
      count -= 8;
      out += static_cast<char>(bits >> count & 0xFFU);
    }
  }
  return out;
}

double numberAt(const json::Value& value, const char* key) {
  return std::stod(value.object()->at(key).number()->text);
}

TEST_F(Timeline, IsLaidOutByABrowser) {
  const auto program = browser();
  if (!program) GTEST_SKIP() << "there is no Chromium on this machine";
  std::string html = page();
  for (const auto& [begin, end] :
       {std::pair("<meta http-equiv", "\n"), {"<script>", "</script>"}}) {
    const std::size_t part = html.find(begin);
    ASSERT_NE(part, std::string::npos);
    html.erase(part, html.find(end, part) - part);
  }
  html.insert(html.find("</head>"), kMeasure);
  writeFile(user.file("measured.html"), html);

  ChildProcess chromium(
      *program, {.arguments = {"--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                               "--no-first-run", "--disable-background-networking",
                               "--disable-component-update", "--disable-sync",
                               "--window-size=1280,800", "--user-data-dir=" + user.file("profile"),
                               "--dump-dom", "file://" + user.file("measured.html")},
                 .environment = user.environment()});
  const std::string dom = chromium.readRest();
  chromium.wait();
  const std::string begin = "<pre id=\"result\">";
  const std::size_t found = dom.find(begin);
  ASSERT_NE(found, std::string::npos) << dom.substr(0, 2000);
  const json::Value result = json::parse(decodedBase64(dom.substr(found + begin.size())));

  EXPECT_EQ(*result.object()->at("images").number(), (json::Number{"0"}));
  EXPECT_EQ(*result.object()->at("scripts").number(), (json::Number{"2"}))
      << "the data and the measure";
  EXPECT_EQ(*result.object()->at("fetched").number(), (json::Number{"0"}));
  EXPECT_FALSE(*result.object()->at("overflow").boolean());

  std::vector<std::string> totals;
  for (const auto& total : *result.object()->at("totals").array()) totals.push_back(*total.text());
  EXPECT_EQ(totals, (std::vector<std::string>{"3h 30m", "2h 30m", "1h 0m"}));

  // The note, then three sessions on the common line, then each on its application's line.
  const auto& spans = *result.object()->at("spans").array();
  ASSERT_EQ(spans.size(), 7U);
  const auto title = [&](std::size_t i) { return *spans[i].object()->at("title").text(); };
  const auto left = [&](std::size_t i) { return numberAt(spans[i].object()->at("box"), "left"); };
  const auto width = [&](std::size_t i) {
    return numberAt(spans[i].object()->at("box"), "right") - left(i);
  };
  const auto top = [&](std::size_t i) { return numberAt(spans[i].object()->at("box"), "top"); };
  EXPECT_EQ(title(0), "Review of the budget\n09:00–10:00, 1h 0m");
  EXPECT_EQ(title(1), "Editor\nmain.cc\n09:00–11:00, 2h 0m");
  EXPECT_EQ(title(2), std::string("Browser\n") + kMarkup + "\n11:00–12:00, 1h 0m");
  EXPECT_EQ(title(3), "Editor\nday.cc\n12:30–13:00, 30m 0s");
  for (std::size_t i = 0; i < spans.size(); ++i) {
    EXPECT_TRUE(*spans[i].object()->at("isColoured").boolean()) << i;
  }
  const double hour = width(1) / 2;
  EXPECT_GT(hour, 50);
  EXPECT_NEAR(width(2), hour, 1);
  EXPECT_NEAR(width(3), hour / 2, 1);
  EXPECT_NEAR(left(2) - left(1), 2 * hour, 1);
  EXPECT_NEAR(left(3) - left(1), 3.5 * hour, 1);
  EXPECT_NEAR(left(0), left(1), 2);
  EXPECT_LT(top(0), top(1)) << "notes are above";
  EXPECT_LT(top(1), top(4)) << "applications are below";
  EXPECT_EQ(top(4), top(5)) << "the two of the editor share a line";
  EXPECT_LT(top(5), top(6)) << "the browser has its own";
}

}  // namespace
}  // namespace tessum
