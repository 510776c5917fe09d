// TessumFetch itself, as another program starts it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <future>

#include "tests/fetch/http_client_fixture.h"
#include "tests/support/child_process.h"

namespace tessum {
namespace {

using FetchProgramTest = HttpClientTest;

TEST_F(FetchProgramTest, EndsWhenNobodyReadsItAnyMore) {
  std::promise<void> isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.set_value();
    connection.waitUntilClosed();
  });
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ChildProcess program(
      TESSUM_FETCH_PROGRAM,
      {.arguments = {server->url(), "3600", folder_.file("authority.pem")}, .prepare = [&ends] {
         dup2(ends[1], STDERR_FILENO);
         close(ends[0]);
         close(ends[1]);
       }});
  close(ends[1]);
  isAsked.get_future().wait();
  close(ends[0]);
  program.wait();
}

TEST_F(FetchProgramTest, RefusesOtherArguments) {
  ChildProcess program(TESSUM_FETCH_PROGRAM);
  EXPECT_EQ(program.finish().code, 2);
  EXPECT_EQ(program.errors(), "usage: TessumFetch URL IDLE-SECONDS [AUTHORITIES-FILE]\n");
}

}  // namespace
}  // namespace tessum
