// Downloads MEGABYTES over HTTPS from this computer with the update checker and the curl program in
// turn, and prints the time and peak memory of each.
//
//   update-download FOLDER MEGABYTES     FOLDER holds the download for a while; it must exist
//
// Each download runs in a separate process, so that the server in this one does not count. The
// checker's process is this program, started again.

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "core/fetch/fetch_program_client.h"
#include "core/loop/system_main_loop.h"
#include "core/update/update_checker.h"
#include "tests/support/https/https_server.h"
#include "tests/support/https/throw_away_authority.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMegabyte = 1'000'000;
constexpr int kRounds = 5;

class FolderOnly final : public Locations {
 public:
  explicit FolderOnly(std::string folder) : folder_(std::move(folder)) {}

  [[nodiscard]] std::string homeFolder() const override { return folder_; }
  [[nodiscard]] std::string dataFolder() const override { return folder_; }
  [[nodiscard]] std::string configFolder() const override { return folder_; }
  [[nodiscard]] std::optional<std::string> executablePath() const override { return std::nullopt; }

 private:
  const std::string folder_;
};

class NoOpener final : public UrlOpener {
 public:
  void open(const std::string&) const override {}
};

// Runs in the process that downloads with the checker. Returns its exit status.
int downloadHere(const std::string& base, const std::string& folder, const std::string& authority) {
  const FolderOnly locations(folder);
  const SystemAppInfo appInfo;
  const NoOpener opener;
  SystemMainLoop loop;
  FetchProgramClient http(loop, {.program = TESSUM_FETCH_PROGRAM, .authoritiesFile = authority});
  UpdateChecker checker({http, loop, locations, appInfo, opener}, {base});
  int status = 1;
  checker.setOnStateChange([&](const UpdateState& state) {
    if (const auto* error = std::get_if<update_state::Error>(&state)) {
      std::fprintf(stderr, "%s\n", error->message.c_str());
      loop.quit();
    }
    if (std::holds_alternative<update_state::ReadyToInstall>(state)) {
      status = 0;
      loop.quit();
    }
  });
  ReleaseInfo release;
  release.tag = "v1";
  release.assets = {{{.name = "image.dmg", .size = 0, .contentType = ""}}};
  checker.downloadAndInstall(release);
  loop.run();
  return status;
}

struct Usage {
  double seconds;
  double mebibytes;  // peak resident memory
};

Usage run(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (auto& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
    throw std::runtime_error("cannot start " + words.front());
  }
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0) {
    throw std::runtime_error(words.front() + " failed");
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
#ifdef __APPLE__
  constexpr double kUnit = 1;  // bytes
#else
  constexpr double kUnit = 1024;  // kibibytes
#endif
  return {took.count(), static_cast<double>(usage.ru_maxrss) * kUnit / (1024 * 1024)};
}

void send(HttpsConnection& connection, std::size_t megabytes) {
  const std::string megabyte(kMegabyte, 'x');
  connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(megabytes * kMegabyte) +
                  "\r\n\r\n");
  for (std::size_t sent = 0; sent < megabytes; ++sent) {
    if (!connection.send(megabyte)) return;
  }
}

void requireWhole(const std::string& path, std::size_t megabytes) {
  if (fs::file_size(path) != megabytes * kMegabyte) {
    throw std::runtime_error(path + " is not whole");
  }
  fs::remove(path);
}

void report(const char* name, const std::vector<Usage>& rounds) {
  double seconds = rounds.front().seconds;
  double mebibytes = 0;
  std::printf("%-8s", name);
  for (const Usage& round : rounds) {
    seconds = std::min(seconds, round.seconds);
    mebibytes = std::max(mebibytes, round.mebibytes);
    std::printf("  %6.2f s", round.seconds);
  }
  std::printf("   best %.2f s   peak resident %.1f MiB\n", seconds, mebibytes);
}

void compare(const std::string& program, const std::string& folder, std::size_t megabytes) {
  const ThrowAwayAuthority authority;
  const std::string authorityFile = folder + "/authority.pem";
  std::ofstream(authorityFile) << authority.certificate();
  const HttpsServer server(authority.issue("IP:127.0.0.1"),
                           [megabytes](HttpsConnection& client) { send(client, megabytes); });
  const std::string image = server.url() + "/releases/macos/v1/assets/image.dmg";

  std::vector<Usage> curl;
  std::vector<Usage> checker;
  for (int round = 0; round < kRounds; ++round) {
    curl.push_back(run({"curl", "--silent", "--show-error", "--http1.1", "--cacert", authorityFile,
                        "--noproxy", "*", "--output", folder + "/by-curl", image}));
    requireWhole(folder + "/by-curl", megabytes);
    checker.push_back(run({program, server.url(), folder, authorityFile}));
    requireWhole(folder + "/Updates/image.dmg", megabytes);
  }
  report("curl", curl);
  report("checker", checker);
  fs::remove(authorityFile);
  fs::remove(folder + "/Updates");
}

}  // namespace
}  // namespace tessum

int main(int argc, char** argv) {
  try {
    if (argc == 4) return tessum::downloadHere(argv[1], argv[2], argv[3]);
    if (argc != 3) {
      std::fputs("usage: update-download FOLDER MEGABYTES\n", stderr);
      return 2;
    }
    tessum::compare(argv[0], argv[1], std::stoul(argv[2]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
