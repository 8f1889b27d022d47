// CLI11 knows the options of the connection at the top only; "fallthrough" lets them stand behind the command as well.
#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/interruption.h"
#include "cli/masking.h"
#include "cli/operations/operation.h"
#include "cli/operations/operation_run.h"
#include "cli/text.h"

namespace Orvane::cli {
namespace {

constexpr int kFirstBay = 1;
constexpr int kLastBay = 999;
constexpr const char* kBuiltInModel = "built-in";

const char* const kFooter =
    "Options of the connection, the output and the log: orvane --help. They may stand before or behind the command.\n"
    "Environment: ORVANE_HOST, ORVANE_PORT, ORVANE_USER, ORVANE_PASSWORD; ORVANE_LOG_LEVEL, ORVANE_LOG_FILE.\n"
    "Exit status: 0 done, 1 operation failed, 2 wrong usage, 3 no connection, 4 not found or not ready,\n"
    "             5 user or password refused, 6 gave up waiting while the job goes on, 130 interrupted.\n"
    "Without hardware: orvane --simulate inventory";

// The values CLI11 writes to while it parses; they live as long as the application object does.
struct Values {
  std::string model;
  std::string output = "table";
  int bay = 0;  // 0: not given
  std::string kind;
  OperationOptions operation;

  std::optional<int> Bay() const { return bay == 0 ? std::nullopt : std::optional(bay); }
};

using Command = std::function<Outcome(const Context&, const Values&)>;

const std::map<std::string, EquipmentKind> kKinds = {
    {"cmm", EquipmentKind::kCmm}, {"switch", EquipmentKind::kSwitch}, {"node", EquipmentKind::kNode}};

void AddOptions(CLI::App& app, Request& request, Values& values) {
  auto* simulate = app.add_flag("--simulate{" + std::string(kBuiltInModel) + "}", values.model,
                                "Start the chassis simulator and use it; --simulate=MODEL.json names its model");
  simulate->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option("--faults", request.simulation.faultsPath, "What goes wrong in the simulated chassis")
      ->type_name("FILE")
      ->needs(simulate);
  const std::string group = "Connection";
  app.add_option("--host", request.connection.host, "Name or address of the management module")
      ->group(group)
      ->excludes(simulate);
  app.add_option("--port", request.connection.port, "CIM port; 0: HTTPS on 5989, then HTTP on 5988")
      ->check(CLI::Range(0U, unsigned{std::numeric_limits<std::uint16_t>::max()}))
      ->group(group)
      ->excludes(simulate);
  app.add_option("--user", request.connection.user, "User name")->group(group)->excludes(simulate);
  auto* file = app.add_option("--password-file", request.connection.passwordFile,
                              "File whose first line is the password; only its owner may read it");
  file->type_name("FILE")->group(group)->excludes(simulate);
  app.add_flag("--password-stdin", request.connection.passwordFromStdin,
               "The first line of standard input is the password")
      ->disable_flag_override()  // an error text would show what somebody takes for the password's place
      ->group(group)
      ->excludes(simulate)
      ->excludes(file);
  app.add_option("-o,--output", values.output, "Form of the result: table or json")
      ->check(CLI::IsMember({"table", "json"}));
  app.add_option("--log-level", request.log.level, "Show the library's log lines up to this level, 0 to 4")
      ->check(CLI::Range(0U, 4U));
  app.add_option("--log-file", request.log.file, "Append the log lines to FILE instead of standard error")
      ->type_name("FILE");
}

class Grammar {
 public:
  Grammar(CLI::App& app, Request& request, Values& values) : app_(app), request_(request), values_(values) {}

  void AddCommands() {
    Leaf(app_, "inventory", "Everything: chassis, management modules, I/O modules, nodes",
         [](const Context& context, const Values&) { return RunInventory(context.target); });
    Leaf(app_, "chassis", "The chassis",
         [](const Context& context, const Values&) { return RunChassis(context.target); });
    CLI::App& cmm = Group("cmm", "Chassis management modules");
    Leaf(cmm, "list", "The management modules",
         [](const Context& context, const Values&) { return RunCmmList(context.target); });
    CLI::App& switches = Group("switch", "Switches (I/O modules)");
    AddBayOption(Leaf(switches, "list", "The switches", [](const Context& context, const Values& values) {
      return RunSwitchList(context.target, values.Bay());
    }));
    CLI::App& passThrus = Group("passthru", "Pass-through modules");
    AddBayOption(Leaf(passThrus, "list", "The pass-through modules", [](const Context& context, const Values& values) {
      return RunPassThruList(context.target, values.Bay());
    }));
    Group("blade", "Compute nodes");
    CLI::App& bay = Group("bay", "I/O bays");
    AddBayArgument(
        Leaf(bay, "type", "The kind of module in a bay: switch or pass-through",
             [](const Context& context, const Values& values) { return RunBayType(context.target, values.bay); }));
    AddBayArgument(
        Leaf(bay, "same", "The other bays with a switch of the same type, one per line",
             [](const Context& context, const Values& values) { return RunBaySame(context.target, values.bay); }));
    Leaf(app_, "equipment", "The bays that hold equipment",
         [](const Context& context, const Values& values) {
           return RunEquipment(context.target,
                               values.kind.empty() ? std::nullopt : std::optional(kKinds.at(values.kind)));
         })
        .add_option("--kind", values_.kind, "Only one kind: cmm, switch (all I/O modules) or node")
        ->check(CLI::IsMember(kKinds));
    for (const Operation& operation : Operations()) AddOperation(operation);
  }

 private:
  void AddOperation(const Operation& operation) {
    const std::string name = operation.name;
    const std::size_t blank = name.find(' ');
    CLI::App& leaf = *app_.get_subcommand(name.substr(0, blank))
                          ->add_subcommand(name.substr(blank + 1), operation.help)
                          ->fallthrough();
    OperationOptions& options = values_.operation;
    if (operation.target != TargetKind::kCmm) {
      leaf.add_option("--bay", options.bay, "The bay")->required()->check(CLI::Range(kFirstBay, kLastBay));
    }
    if (operation.packages > 0) AddPackages(leaf, operation.packages);
    if (operation.mayStay) leaf.add_flag("--no-reboot", options.noReboot, "Install only");
    if (operation.resultsWithoutWait != nullptr)
      leaf.add_flag("--no-wait", options.noWait, "Do not wait until it answers again");
    if (operation.changes) AddSafeguards(leaf);
    leaf.add_option("--progress", options.progress,
                    "On standard error: auto (a live line on a terminal, else plain), plain or jsonl")
        ->check(CLI::IsMember({"auto", "plain", "jsonl"}));
    leaf.callback([&request = request_, &options, &operation] {
      const auto run = std::make_shared<OperationRun>(operation, options);
      request.operation = operation.name;
      request.jsonLines = options.progress == "jsonl";
      request.prepare = [run] { run->Prepare(); };
      request.run = [run](const Context& context) { return run->Carry(context); };
    });
  }

  void AddPackages(CLI::App& leaf, std::size_t most) {
    CLI::Option& packages =
        *leaf.add_option("--package", values_.operation.packages,
                         most > 1 ? "Where the management module fetches the package; may be given twice"
                                  : "Where the management module fetches the package")
             ->required()
             ->type_name("URI");
    packages.expected(1, static_cast<int>(most))->allow_extra_args(false);
  }

  void AddSafeguards(CLI::App& leaf) {
    OperationOptions& options = values_.operation;
    leaf.add_flag("--check", options.check, "Only show what it would work on and do; nothing is changed");
    leaf.add_flag("--yes", options.yes, "Do not ask");
    leaf.add_option("--journal", options.journal, "Append what happens to FILE, as lines of JSON")->type_name("FILE");
  }

  CLI::App& Group(const std::string& name, const std::string& description) {
    CLI::App& group = *app_.add_subcommand(name, description);
    group.require_subcommand(1)->fallthrough();
    return group;
  }

  CLI::App& Leaf(CLI::App& parent, const std::string& name, const std::string& description, Command command) {
    CLI::App& leaf = *parent.add_subcommand(name, description);
    const std::string operation = &parent == &app_ ? name : parent.get_name() + " " + name;
    // Called when the whole line has been read: what runs later keeps the values, not this object.
    leaf.fallthrough()->callback([&request = request_, &values = values_, operation, command = std::move(command)] {
      request.operation = operation;
      request.run = [operation, command, values](const Context& context) {
        const Interruption interruption([&] { TellInterruption(context, operation, "interrupted"); });
        return command(context, values);
      };
    });
    return leaf;
  }

  void AddBayOption(CLI::App& leaf) {
    leaf.add_option("--bay", values_.bay, "Only the module in this bay")->check(CLI::Range(kFirstBay, kLastBay));
  }

  void AddBayArgument(CLI::App& leaf) {
    leaf.add_option("BAY", values_.bay, "Bay number, from 1")->required()->check(CLI::Range(kFirstBay, kLastBay));
  }

  CLI::App& app_;
  Request& request_;
  Values& values_;
};

}  // namespace

namespace {

// What may be shown of a word that fits nowhere: an option without its value, a URI without credentials.
std::string Shown(const std::string& word) {
  const bool isShortOption = word.size() > 2 && word[0] == '-' && word[1] != '-';
  if (isShortOption) return word.substr(0, 2);
  if (word.find('@') != std::string::npos && word.find("://") == std::string::npos) return "...";
  return MaskCredentials(word).substr(0, word.find('='));
}

}  // namespace

std::variant<Request, Finished> ParseCommandLine(int argc, const char* const* argv) {
  CLI::App app{"Reads, updates, restarts and reseats the parts of a blade chassis through its management module.",
               "orvane"};
  Request request;
  Values values;
  app.require_subcommand(1);
  app.footer(kFooter);
  app.set_version_flag("--version", "orvane " ORVANE_VERSION, "Print the version and exit");
  AddOptions(app, request, values);
  Grammar(app, request, values).AddCommands();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // The words that fit nowhere, unless help was asked for. Only the first is shown, without a value: somebody who
    // guesses an option for the password must not see it in the error text.
    const std::vector<std::string> unknown = app.remaining(/*recurse=*/true);
    const bool success = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
    if (!success && !unknown.empty()) {
      const std::string word = Neutralise(Shown(unknown.front()));
      std::cerr << "orvane: \"" << word << "\" is no command or option\nRun with --help for more information.\n";
      return Finished{ExitStatus::kUsage};
    }
    if (success) {
      app.exit(error);
      return Finished{std::cout.flush() ? ExitStatus::kDone : ExitStatus::kFailed};
    }
    std::cerr << "orvane: " << Neutralise(error.what()) << "\nRun with --help for more information.\n";
    return Finished{ExitStatus::kUsage};
  }
  request.simulate = !values.model.empty();
  if (values.model != kBuiltInModel) request.simulation.modelPath = values.model;
  request.json = values.output == "json";
  return request;
}

}  // namespace Orvane::cli
