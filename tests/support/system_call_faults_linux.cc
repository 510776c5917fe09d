#include "tests/support/system_call_faults_linux.h"

#include <sys/personality.h>

#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

constexpr int kNotFound = 127;

// Calls that have nothing to do with files: those that manage memory, and those that get random
// numbers. The C library repeats the latter by chance (one temporary name in twenty takes a second
// number), so they differ from run to run.
bool isLeftAlone(const std::string& call) {
  static const std::set<std::string> kCalls{"brk",    "mmap",       "munmap",   "mprotect",
                                            "mremap", "madvise",    "prctl",    "futex",
                                            "exit",   "exit_group", "getrandom"};
  return kCalls.contains(call);
}

}  // namespace

bool canInjectFaults() {
  ChildProcess::Options options;
  options.arguments = {"-o", "/dev/null", "true"};
  ChildProcess tracer("strace", options);
  const ExitStatus status = tracer.finish();
  if (status.code == kNotFound) throw std::runtime_error("strace is not installed");
  return status == kSuccess;
}

ExitStatus TracedProgram::trace(std::vector<std::string> options) const {
  options.push_back(program);
  options.insert(options.end(), arguments.begin(), arguments.end());
  ChildProcess::Options child;
  child.arguments = std::move(options);
  child.environment = environment;
  // The sanitizer's search for leaks also traces the program, and only one tracer can.
  child.environment.emplace_back("ASAN_OPTIONS=detect_leaks=0");
  // Sanitizers read the list of the program's mappings with a number of calls that depends on their
  // addresses. Where the system does not let us fix these, a call may be missing in a run.
  child.prepare = [] { personality(ADDR_NO_RANDOMIZE); };
  ChildProcess tracer("strace", child);
  static_cast<void>(tracer.readRest());
  return tracer.finish();
}

std::vector<SystemCall> TracedProgram::callsFrom(std::string_view text) const {
  const TemporaryFolder folder;
  if (const ExitStatus status = trace({"-o", folder.file("log")}); status != kSuccess) {
    throw std::runtime_error("the traced program failed");
  }
  std::vector<SystemCall> calls;
  std::map<std::string, int> occurrences;
  std::istringstream log(readFile(folder.file("log")));
  std::string line;
  std::getline(log, line);  // the start of the program, which has `text` as an argument
  occurrences["execve"] = 1;
  bool isMentioned = false;
  while (std::getline(log, line)) {
    const auto parenthesis = line.find('(');
    if (parenthesis == std::string::npos || line.starts_with('-') || line.starts_with('+'))
      continue;
    const std::string name = line.substr(0, parenthesis);
    const int occurrence = ++occurrences[name];
    isMentioned |= line.find(text) != std::string::npos;
    if (isMentioned && !isLeftAlone(name)) calls.push_back({name, occurrence});
  }
  return calls;
}

ExitStatus TracedProgram::runWithFault(const SystemCall& call, const std::string& fault) const {
  return trace({"-o", "/dev/null", "-e",
                "inject=" + call.name + ":" + fault + ":when=" + std::to_string(call.occurrence)});
}

}  // namespace tessum
