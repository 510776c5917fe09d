#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/base/text.h"
#include "desktop/clients/assistants.h"
#include "desktop/clients/client_rows.h"
#include "desktop/clients/registration.h"
#include "desktop/clients/registration_records.h"
#include "desktop/command_line/data_options.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/data/state_data.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

// The arguments of install and uninstall.
struct Targets {
  std::vector<std::string> names;
  bool all = false;
  std::string file;
  bool isDryRun = false;
};

// One known application, or a file of another one.
struct Target {
  std::optional<Assistant> assistant;
  std::vector<RegistrationFile> files;  // the first is the one that is read

  [[nodiscard]] std::string name() const {
    return assistant ? std::string(assistant->name) : files.front().path;
  }
};

std::string shown(std::string_view text) {
  return printable(validUtf8(text));
}

// Prints a remark, apart from the results.
void note(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
}

Target targetOf(const Assistant& assistant) {
  Target target{.assistant = assistant, .files = {}};
  for (const std::string& file : assistant.files) {
    target.files.push_back({file, assistant.format});
  }
  return target;
}

Target nameArgument(const std::string& name, const Host& host) {
  if (const auto assistant = assistantNamed(name, host.locations)) return targetOf(*assistant);
  std::string known;
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    known += (known.empty() ? "\"" : ", \"") + std::string(assistant.name) + "\"";
  }
  throw CLI::ValidationError("there is no application \"" + name + "\"; the known ones are " +
                             known + "; for any other, give its file with --file");
}

// The targets that are named; none when `--all` stands for them.
std::vector<Target> targetsArgument(const Targets& given, const Host& host) {
  std::vector<Target> targets;
  for (const std::string& name : given.names) targets.push_back(nameArgument(name, host));
  if (!given.file.empty()) {
    const auto path = std::filesystem::absolute(given.file).lexically_normal();
    targets.push_back({std::nullopt, {{path.string(), {}}}});
  }
  if (targets.empty() && !given.all) {
    throw CLI::ValidationError("name an application, or give --all or --file PATH");
  }
  return targets;
}

////////////////////////////////////////////////////////////////////////////////////////////////
// clients

void addRow(Table& table, const ClientRow& row) {
  using Cell = Table::Cell;
  const bool isRegistered = row.isRegistered.value_or(false);
  const Cell works = !isRegistered         ? Cell{"-"}
                     : row.problem.empty() ? Cell{"yes", Tone::good}
                                           : Cell{"no: " + row.problem, Tone::bad};
  table.addRow({Cell{row.application},
                {row.isPresent ? "yes" : "no"},
                {isRegistered       ? "yes"
                 : row.isRegistered ? "no"
                                    : "unknown"},
                {row.form.empty() ? "-" : row.form},
                works,
                {shown(row.file), Tone::plain, Table::Fit::whole}});
}

void listClients(const Host& host, bool isData) {
  const auto rows = clientRows(host);
  if (isData) return printForeign(clientsData(rows));
  using enum Table::Alignment;
  Table table({left, left, left, left, left, left});
  table.addRow({{"Application", Tone::strong},
                {"Here", Tone::strong},
                {"Registered", Tone::strong},
                {"Entry", Tone::strong},
                {"Works now", Tone::strong},
                {"Configuration file", Tone::strong}});
  for (const ClientRow& row : rows) {
    if (!row.remark.empty()) note(shown(row.remark));
    addRow(table, row);
  }
  print(table.text(standardOutputPaper()));
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

// Says why a file was refused.
void refuse(const RegistrationChange& change, Host& host) {
  note("Tessum: " + printableLines(validUtf8(change.problem)));
  host.status = kFailure;
}

void install(const Target& target, const RegistrationOptions& options, Host& host) {
  const RegistrationFile& file = target.files.front();
  const RegistrationChange change = registerIn(file, options, host);
  const std::string where =
      (target.assistant ? "with " + target.name() + " " : "") + "in " + shown(file.path) + ".\n";
  switch (change.outcome) {
    case RegistrationChange::Outcome::refused:
      refuse(change, host);
      return note(
          "Or have the whole file rewritten, with a copy of it kept aside: give --replace.");
    case RegistrationChange::Outcome::unchanged:
      return print("Already registered " + where);
    case RegistrationChange::Outcome::changed:
      break;
  }
  if (options.isDryRun) return printForeign(change.difference);
  if (!change.copy.empty()) {
    note(shown(file.path) + " was no plain JSON object; a copy of it is " + shown(change.copy) +
         ".");
  }
  print("Registered " + where);
  if (target.files.size() > 1) {
    note(target.name() + " reads this file and not " + shown(target.files.back().path) + ".");
  }
  if (target.assistant && target.assistant->id == "claude-desktop") {
    note(
        "Claude Desktop rewrites its file while it runs. If it is running, quit it, repeat this "
        "command, and start it again.");
  }
}

void installAll(const Targets& given, const RegistrationOptions& options, Host& host) {
  std::vector<Target> targets = targetsArgument(given, host);
  if (given.all) {
    for (const Assistant& assistant : knownAssistants(host.locations)) {
      if (isPresent(assistant, host.files)) targets.push_back(targetOf(assistant));
    }
  }
  if (targets.empty()) {
    return print("No application that \"clients\" names is on this computer.\n");
  }
  for (const Target& target : targets) {
    attempt(host, [&] { install(target, options, host); });
  }
  if (options.form == EntryForm::http) {
    note("Applications find Tessum only while \"Tessum record --http\" is running.");
  }
}

// Returns whether an entry was found, or may be there.
bool uninstallFrom(const RegistrationFile& file, const RegistrationOptions& options, Host& host) {
  const RegistrationChange change = unregisterFrom(file, options, host);
  switch (change.outcome) {
    case RegistrationChange::Outcome::refused:
      refuse(change, host);
      return true;
    case RegistrationChange::Outcome::unchanged:
      return false;
    case RegistrationChange::Outcome::changed:
      break;
  }
  if (options.isDryRun) {
    printForeign(change.difference);
  } else {
    print("Removed from " + shown(file.path) + ".\n");
  }
  return true;
}

bool uninstall(const Target& target, const RegistrationOptions& options, Host& host) {
  bool isFound = false;
  for (const RegistrationFile& file : target.files) {
    bool isFoundHere = true;
    attempt(host, [&] { isFoundHere = uninstallFrom(file, options, host); });
    isFound |= isFoundHere;
  }
  return isFound;
}

// Every known application, and the other files that install was given.
std::vector<Target> everyTarget(const Host& host) {
  std::vector<Target> targets;
  std::vector<std::string> others = recordedFiles(host);
  for (const Assistant& assistant : knownAssistants(host.locations)) {
    targets.push_back(targetOf(assistant));
    for (const std::string& file : assistant.files) std::erase(others, file);
  }
  for (const std::string& file : others) targets.push_back({std::nullopt, {{file, {}}}});
  return targets;
}

void uninstallAll(const Targets& given, Host& host) {
  const RegistrationOptions options{.isDryRun = given.isDryRun};
  for (const Target& target : targetsArgument(given, host)) {
    if (!uninstall(target, options, host)) {
      print("Not registered with " + shown(target.name()) + ".\n");
    }
  }
  if (!given.all) return;
  bool isFound = false;
  for (const Target& target : everyTarget(host)) isFound |= uninstall(target, options, host);
  if (!isFound) print("Not registered with any application.\n");
}

void addTargets(CLI::App& command, Targets& targets, const char* all) {
  auto* names =
      command.add_option("NAME", targets.names, "applications, as \"clients\" names them")
          ->type_name("");
  command.add_flag("--all", targets.all, all)->excludes(names);
  command
      .add_option("--file", targets.file,
                  "the configuration file of another application that keeps its servers under "
                  "\"mcpServers\"")
      ->type_name("PATH");
  command.add_flag("--dry-run", targets.isDryRun, "show what would change, and change nothing");
}

}  // namespace

void addClientCommands(CLI::App& app, Host& host) {
  auto* clients =
      app.add_subcommand("clients", "Show which assistant applications Tessum is registered with");
  clients->footer(
      "An entry works now when the program that it starts exists, or when the endpoint that it\n"
      "names answers.\n\n"
      "Examples:\n"
      "  Tessum clients\n"
      "  Tessum clients --json");
  const auto isData = std::make_shared<bool>(false);
  addJsonOption(*clients, *isData);
  clients->callback([&host, isData] { listClients(host, *isData); });

  struct InstallOptions {
    Targets targets;
    bool http = false;
    bool isRewrite = false;
  };
  auto* installing = app.add_subcommand("install", "Register Tessum with assistant applications");
  const auto options = std::make_shared<InstallOptions>();
  addTargets(*installing, options->targets, "every application that is on this computer");
  installing->add_flag("--http", options->http,
                       "use the endpoint of \"Tessum record --http\" instead of starting "
                       "TessumMCP");
  installing->add_flag("--replace", options->isRewrite,
                       "rewrite the whole file, a copy kept aside of one that is not plain JSON");
  installing->footer(
      "Only the entry \"tessum\" is written; every other byte of the file stays. A file that\n"
      "cannot be edited safely is left as it is, and the lines to paste are shown.\n\n"
      "Examples:\n"
      "  Tessum install cursor windsurf\n"
      "  Tessum install \"Claude Desktop\" --dry-run\n"
      "  Tessum install --all --http\n"
      "  Tessum install --file ~/.config/other/mcp.json");
  installing->callback([&host, options] {
    installAll(options->targets,
               {.form = options->http ? EntryForm::http : EntryForm::stdio,
                .isDryRun = options->targets.isDryRun,
                .isRewrite = options->isRewrite},
               host);
  });

  auto* uninstalling = app.add_subcommand("uninstall", "Remove Tessum from assistant applications");
  const auto targets = std::make_shared<Targets>();
  addTargets(*uninstalling, *targets, "every application that has Tessum's entry");
  uninstalling->footer(
      "Only the entry \"tessum\" is removed, and what was made for it. A file without one is not\n"
      "touched.\n\n"
      "Examples:\n"
      "  Tessum uninstall cursor\n"
      "  Tessum uninstall --all --dry-run");
  uninstalling->callback([&host, targets] { uninstallAll(*targets, host); });
}

}  // namespace tessum
