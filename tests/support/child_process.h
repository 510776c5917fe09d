// A program that a test starts and talks to over its standard streams.

#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// How a program ended: with a status of its own, or by a signal.
struct ExitStatus {
  std::optional<int> code;
  std::optional<int> signal;

  friend bool operator==(const ExitStatus&, const ExitStatus&) = default;
  friend std::ostream& operator<<(std::ostream& out, const ExitStatus& status);
};

inline constexpr ExitStatus kSuccess{.code = 0, .signal = {}};

// A running program. Each call that waits for it throws std::runtime_error after a minute, so a
// test that could hang fails with a message. Not thread-safe.
class ChildProcess {
 public:
  struct Options {
    std::vector<std::string> arguments = {};    // behind the program's name
    std::vector<std::string> environment = {};  // NAME=value, on top of the test's own

    // Runs in the child just before the program takes over: limits, closed descriptors, another
    // user. It may use only what is safe after fork(), that is plain system calls.
    std::function<void()> prepare = nullptr;
  };

  // Starts `program`, a path or a name that PATH finds. One that cannot be started ends with the
  // status 127.
  explicit ChildProcess(const std::string& program);
  ChildProcess(const std::string& program, const Options& options);

  // Kills the program if it has not ended.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t id() const { return id_; }

  // Writes to its standard input and gathers what it answers meanwhile, so that neither waits for
  // the other. What a program that has closed its input would not read is dropped.
  void write(std::string_view bytes);
  void writeLine(std::string_view line);
  void closeInput();

  // The next line of its standard output, without the line feed; absent at the end of output.
  // Bytes behind the last line feed count as a line.
  [[nodiscard]] std::optional<std::string> readLine();

  // All of its standard output that has not been read as lines, up to the end of output.
  [[nodiscard]] std::string readRest();

  // All that it has written to standard error.
  [[nodiscard]] std::string errors() const;

  void kill(int signal = SIGKILL);

  // Waits for its end; standard input is left as it is.
  ExitStatus wait();

  // Closes its input and waits for its end.
  ExitStatus finish();

 private:
  void gatherOutput(short inputEvents);

  pid_t id_ = -1;
  int input_ = -1;   // -1 once closed
  int output_ = -1;  // -1 after its end
  int errors_ = -1;  // a file without a name
  std::string gathered_;
  std::optional<ExitStatus> status_;
};

}  // namespace tessum
