#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/base/text.h"
#include "core/install/mcp_client.h"
#include "core/install/mcp_installer.h"
#include "desktop/clients/client_files.h"
#include "desktop/clients/config_file.h"
#include "desktop/clients/endpoint_state.h"
#include "desktop/clients/entry_check.h"
#include "desktop/commands/standard_output.h"
#include "desktop/reports/text_layout.h"

namespace tessum {
namespace {

// The arguments of install and uninstall.
struct Targets {
  std::vector<std::string> names;
  bool all = false;
  std::string file;
};

// One application of the catalogue, or a file of another application.
struct Target {
  std::optional<MCPClient> client;
  std::vector<std::string> files;  // the first is the one that is read

  [[nodiscard]] std::string name() const {
    return client ? std::string(client->displayName()) : files.front();
  }
};

std::string shown(std::string_view text) {
  return printable(validUtf8(text));
}

// Prints a remark, apart from the results.
void note(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
}

MCPClient clientArgument(const std::string& name) {
  std::string known;
  for (const MCPClient client : MCPClient::allCases()) {
    if (lowerCaseAscii(client.rawValue()) == lowerCaseAscii(name)) return client;
    known += (known.empty() ? "\"" : ", \"") + std::string(client.rawValue()) + "\"";
  }
  throw CLI::ValidationError("there is no application \"" + name + "\"; the known ones are " +
                             known + "; for any other, give its file with --file");
}

std::vector<Target> targetsArgument(const Targets& given, const Host& host) {
  std::vector<Target> targets;
  const auto add = [&](MCPClient client) {
    targets.push_back({client, clientFiles(client, host.locations)});
  };
  for (const std::string& name : given.names) add(clientArgument(name));
  if (given.all) {
    for (const MCPClient client : MCPClient::allCases()) add(client);
  }
  if (!given.file.empty()) {
    targets.push_back({std::nullopt, {std::filesystem::absolute(given.file).string()}});
  }
  if (targets.empty()) {
    throw CLI::ValidationError("name an application, or give --all or --file PATH");
  }
  return targets;
}

////////////////////////////////////////////////////////////////////////////////////////////////
// clients

void addRow(Table& table, const Host& host, MCPClient client, const std::string& file,
            bool isReadByClient) {
  using Cell = Table::Cell;
  const auto row = [&](const char* isRegistered, const std::string& form, const Cell& works) {
    table.addRow(
        {Cell{std::string(client.displayName())}, {isRegistered}, {form}, works, {shown(file)}});
  };
  ConfigFile config;
  try {
    config = lookAt(host.files, file);
  } catch (const std::system_error& error) {
    note(shown(error.what()));
    return row("unknown", "-", {"-"});
  }
  if (config.isDamaged()) note(shown(file) + " is not a JSON object.");

  const json::Value* entry = config.object ? tessumEntry(*config.object) : nullptr;
  if (entry == nullptr) {
    if (isReadByClient) row("no", "-", {"-"});
    return;
  }
  EntryReport report = checkEntry(*entry);
  if (!isReadByClient) report.problem = "the application does not read this file";
  const Cell works =
      report.problem.empty() ? Cell{"yes", Tone::good} : Cell{"no: " + report.problem, Tone::bad};
  row("yes", report.form, works);
}

void listClients(const Host& host) {
  using enum Table::Alignment;
  Table table({left, left, left, left, left});
  table.addRow({{"Application", Tone::strong},
                {"Registered", Tone::strong},
                {"Entry", Tone::strong},
                {"Works now", Tone::strong},
                {"Configuration file", Tone::strong}});
  for (const MCPClient client : MCPClient::allCases()) {
    const auto files = clientFiles(client, host.locations);
    for (const std::string& file : files) addRow(table, host, client, file, file == files.front());
  }
  Paper paper = standardOutputPaper();
  paper.columns = 0;  // never cut a path
  print(table.text(paper));
}

////////////////////////////////////////////////////////////////////////////////////////////////
// install and uninstall

// Does `work` on one file. If the file cannot be read or written, the others are still done.
template <typename Work>
void attempt(Host& host, Work work) {
  try {
    work();
  } catch (const std::system_error& error) {
    note("Tessum: " + shown(error.what()));
    host.status = kFailure;
  }
}

MCPInstaller installerFor(const Host& host) {
  return {usualEndpointURL(), host.files, host.locations};
}

// `config` with our entry. Throws std::runtime_error when the stdio server is missing, because no
// application could use that entry. We check the entry itself because it was made for this file.
ConfigFile::Object withEntry(const ConfigFile& config, bool useStdio, const Host& host) {
  auto edited =
      installerFor(host).setTessumEntry(config.object.value_or(ConfigFile::Object()), useStdio);
  if (useStdio && !checkEntry(*tessumEntry(edited)).problem.empty()) {
    throw std::runtime_error(
        "there is no TessumMCP beside this program, so no application could start it");
  }
  return edited;
}

void install(const Target& target, bool useStdio, const Host& host) {
  const std::string& file = target.files.front();
  const ConfigFile config = lookAt(host.files, file);
  const auto edited = withEntry(config, useStdio, host);
  if (config.isDamaged()) {
    note(shown(file) + " is not a JSON object; a copy of it is " +
         shown(keepCopy(host.files, file, *config.bytes)) + ".");
  }
  installerFor(host).writeConfig(edited, file);
  print("Registered " + (target.client ? "with " + target.name() + " " : "") + "in " + shown(file) +
        ".\n");
  if (target.files.size() > 1) {
    note(target.name() + " reads this file and not " + shown(target.files.back()) + ".");
  }
  if (target.client == MCPClient::claudeDesktop) {
    note(
        "Claude Desktop rewrites its file while it runs. If it is running, quit it, repeat this "
        "command, and start it again.");
  }
}

void installAll(const std::vector<Target>& targets, bool useStdio, Host& host) {
  for (const Target& target : targets) {
    attempt(host, [&] { install(target, useStdio, host); });
  }
  if (!useStdio) {
    note("Applications find Tessum only while \"Tessum record --http\" is running.");
  }
}

enum class Removal { removed, notRegistered, failed };

Removal uninstallFrom(const std::string& file, Host& host) {
  const ConfigFile config = lookAt(host.files, file);
  if (config.isDamaged()) {
    note("Tessum: " + shown(file) + " is not a JSON object. It was left as it is.");
    host.status = kFailure;
    return Removal::failed;
  }
  if (!config.object || tessumEntry(*config.object) == nullptr) return Removal::notRegistered;
  installerFor(host).writeConfig(MCPInstaller::removeTessumEntry(*config.object), file);
  print("Removed from " + shown(file) + ".\n");
  return Removal::removed;
}

void uninstall(const Target& target, Host& host) {
  bool isRegisteredNowhere = true;
  for (const std::string& file : target.files) {
    Removal removal = Removal::failed;
    attempt(host, [&] { removal = uninstallFrom(file, host); });
    isRegisteredNowhere &= removal == Removal::notRegistered;
  }
  if (isRegisteredNowhere) print("Not registered with " + shown(target.name()) + ".\n");
}

void addTargets(CLI::App& command, Targets& targets) {
  auto* names =
      command.add_option("NAME", targets.names, "applications, as \"clients\" names them")
          ->type_name("");
  command.add_flag("--all", targets.all, "every application that \"clients\" names")
      ->excludes(names);
  command
      .add_option("--file", targets.file,
                  "the configuration file of another application that keeps its servers under "
                  "\"mcpServers\"")
      ->type_name("PATH");
}

}  // namespace

void addClientCommands(CLI::App& app, Host& host) {
  auto* clients =
      app.add_subcommand("clients", "Show which assistant applications Tessum is registered with");
  clients->footer(
      "An entry works now when the program that it starts exists, or when the endpoint that it\n"
      "names answers.\n\n"
      "Example:\n"
      "  Tessum clients");
  clients->callback([&host] { listClients(host); });

  struct InstallOptions {
    Targets targets;
    bool http = false;
  };
  auto* installing = app.add_subcommand("install", "Register Tessum with assistant applications");
  const auto options = std::make_shared<InstallOptions>();
  addTargets(*installing, options->targets);
  installing->add_flag("--http", options->http,
                       "use the endpoint of \"Tessum record --http\" instead of starting "
                       "TessumMCP");
  installing->footer(
      "Only the entry \"tessum\" is written; the rest of the file keeps its values. A file that\n"
      "is not a JSON object is copied first.\n\n"
      "Examples:\n"
      "  Tessum install cursor windsurf\n"
      "  Tessum install \"Claude Desktop\"\n"
      "  Tessum install --all --http\n"
      "  Tessum install --file ~/.config/other/mcp.json");
  installing->callback([&host, options] {
    installAll(targetsArgument(options->targets, host), !options->http, host);
  });

  auto* uninstalling = app.add_subcommand("uninstall", "Remove Tessum from assistant applications");
  const auto targets = std::make_shared<Targets>();
  addTargets(*uninstalling, *targets);
  uninstalling->footer(
      "Only the entry \"tessum\" is removed. A file without one is not touched.\n\n"
      "Examples:\n"
      "  Tessum uninstall cursor\n"
      "  Tessum uninstall --all");
  uninstalling->callback([&host, targets] {
    for (const Target& target : targetsArgument(*targets, host)) uninstall(target, host);
  });
}

}  // namespace tessum
