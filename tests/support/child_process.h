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
inline constexpr ExitStatus kFailure{.code = 1, .signal = {}};

// A running program. Each call that waits for it throws std::runtime_error after a minute, so a
// test that could hang fails with a message. Not thread-safe.
class ChildProcess {
 public:
  struct Options {
    std::vector<std::string> arguments = {};    // without the program's name
    std::vector<std::string> environment = {};  // NAME=value, added to the test's own

    // Runs in the child just before the program starts: to set limits, close descriptors or change
    // the user. It may only do what is safe after fork(), that is make plain system calls.
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

  // Writes to its standard input, and meanwhile reads what it answers, so that neither side blocks
  // the other. Drops the rest if the program has closed its input.
  void write(std::string_view bytes);
  void writeLine(std::string_view line);
  void closeInput();

  // The next line of its standard output, without the line feed; absent at the end of output.
  // Bytes after the last line feed count as a line.
  [[nodiscard]] std::optional<std::string> readLine();

  // The rest of its standard output, up to the end.
  [[nodiscard]] std::string readRest();

  // Everything that it has written to standard error.
  [[nodiscard]] std::string errors() const;

  void kill(int signal = SIGKILL);

  // Waits for its end and leaves its standard input open.
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
