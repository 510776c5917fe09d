#include "tests/support/desktop/test_desktop.h"

#include <grp.h>
#include <unistd.h>

#include <stdexcept>

namespace tessum {
namespace {

constexpr uid_t kNobody = 65534;

void becomeNobody() {
  const bool isDone = setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0;
  if (!isDone) _exit(127);
}

}  // namespace

TestDesktop::TestDesktop(User user) : dropsPowers_(user == User::ordinary && geteuid() == 0) {
  if (dropsPowers_ && chown(home_.path().c_str(), kNobody, kNobody) != 0) {
    throw std::runtime_error("cannot give the home folder to its user");
  }
}

std::unique_ptr<ChildProcess> TestDesktop::start(
    const std::string& program, const std::vector<std::string>& arguments,
    const std::vector<std::string>& environment) const {
  std::vector<std::string> all = environment;
  for (const auto& variable : variables()) all.push_back(variable);
  for (const auto& variable :
       {"HOME=" + home_.path(), "XDG_DATA_HOME=" + home_.file("data"),
        "XDG_CONFIG_HOME=" + home_.file("config"), std::string("LC_ALL=C.UTF-8")}) {
    all.push_back(variable);
  }
  ChildProcess::Options options{.arguments = arguments, .environment = all, .prepare = {}};
  if (dropsPowers_) options.prepare = becomeNobody;
  return std::make_unique<ChildProcess>(program, options);
}

std::string TestDesktop::run(const std::string& program,
                             const std::vector<std::string>& arguments) const {
  const auto process = start(program, arguments);
  std::string output = process->readRest();
  const bool succeeded = process->finish() == kSuccess;
  if (!succeeded) throw std::runtime_error(program + " failed: " + process->errors());
  if (output.ends_with('\n')) output.pop_back();
  return output;
}

}  // namespace tessum
